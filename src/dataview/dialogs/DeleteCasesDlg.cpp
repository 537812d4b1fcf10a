#include "dataview/dialogs/DeleteCasesDlg.h"

#include <QPushButton>

#include "dataview/dialogs/DialogLook.h"
#include "ui_DeleteCasesDlg.h"

CdlgDeleteCases::CdlgDeleteCases(std::int64_t first, std::int64_t last, std::int64_t cases,
                                 QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::DeleteCasesDlg>()), cases_(cases) {
  ui_->setupUi(this);
  const int most = static_cast<int>(cases);
  for (QSpinBox* const spin :
       {ui_->firstSpin, ui_->countSpin, ui_->fromSpin, ui_->toSpin, ui_->restSpin}) {
    spin->setMaximum(most);
    connect(spin, &QSpinBox::valueChanged, this, &CdlgDeleteCases::Refresh);
  }
  for (QSpinBox* const spin : {ui_->firstSpin, ui_->fromSpin, ui_->restSpin}) {
    spin->setValue(static_cast<int>(first));
  }
  ui_->toSpin->setValue(static_cast<int>(last));
  ui_->countSpin->setValue(static_cast<int>(last - first + 1));
  for (QRadioButton* const radio : {ui_->firstRadio, ui_->fromRadio, ui_->restRadio}) {
    connect(radio, &QRadioButton::toggled, this, &CdlgDeleteCases::Refresh);
  }
  ui_->firstRadio->setChecked(true);
  DressDialog(*this);
  Refresh();
}

CdlgDeleteCases::~CdlgDeleteCases() = default;

DeleteCasesRequest CdlgDeleteCases::Request() const {
  DeleteCasesRequest request;
  request.form = ui_->firstRadio->isChecked()  ? DeleteCasesForm::FirstAndCount
                 : ui_->fromRadio->isChecked() ? DeleteCasesForm::FromTo
                                               : DeleteCasesForm::ThroughLast;
  request.first = ui_->firstSpin->value();
  request.count = ui_->countSpin->value();
  request.from = ui_->restRadio->isChecked() ? ui_->restSpin->value() : ui_->fromSpin->value();
  request.to = ui_->toSpin->value();
  return request;
}

void CdlgDeleteCases::Refresh() {
  const DeleteCasesRequest request = Request();
  ui_->firstSpin->setEnabled(request.form == DeleteCasesForm::FirstAndCount);
  ui_->countSpin->setEnabled(request.form == DeleteCasesForm::FirstAndCount);
  ui_->fromSpin->setEnabled(request.form == DeleteCasesForm::FromTo);
  ui_->toSpin->setEnabled(request.form == DeleteCasesForm::FromTo);
  ui_->restSpin->setEnabled(request.form == DeleteCasesForm::ThroughLast);
  const CaseRange range = DeletionRange(request, cases_);
  const std::int64_t count = range.end - range.begin;
  ui_->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(count > 0);
  ui_->hintLabel->setText(count == 0 ? tr("No case is deleted.")
                          : count == 1
                              ? tr("Case %L1 of %L2 is deleted.").arg(range.begin + 1).arg(cases_)
                              : tr("Cases %L1 to %L2 are deleted: %L3 of %L4.")
                                    .arg(range.begin + 1)
                                    .arg(range.end)
                                    .arg(count)
                                    .arg(cases_));
}
