#include "dataview/dialogs/InsertCasesDlg.h"

#include <QPushButton>
#include <algorithm>

#include "dataview/dialogs/DialogLook.h"
#include "dataview/operations/Limits.h"
#include "ui_InsertCasesDlg.h"

CdlgInsertCases::CdlgInsertCases(std::int64_t caseNumber, std::int64_t cases, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::InsertCasesDlg>()), cases_(cases) {
  ui_->setupUi(this);
  ui_->countSpin->setMaximum(std::max(RoomBeside(cases, kMostCases), 1));
  ui_->caseSpin->setMaximum(static_cast<int>(std::max<std::int64_t>(cases, 1)));
  ui_->caseSpin->setValue(static_cast<int>(caseNumber));
  ui_->beforeRadio->setChecked(true);
  (cases > 0 ? ui_->atRadio : ui_->endRadio)->setChecked(true);
  ui_->atRadio->setEnabled(cases > 0);
  ui_->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(RoomBeside(cases, kMostCases) > 0);
  connect(ui_->atRadio, &QRadioButton::toggled, this, &CdlgInsertCases::Refresh);
  connect(ui_->afterRadio, &QRadioButton::toggled, this, &CdlgInsertCases::Refresh);
  connect(ui_->caseSpin, &QSpinBox::valueChanged, this, &CdlgInsertCases::Refresh);
  connect(ui_->countSpin, &QSpinBox::valueChanged, this, &CdlgInsertCases::Refresh);
  DressDialog(*this);
  Refresh();
  ui_->countSpin->selectAll();
}

CdlgInsertCases::~CdlgInsertCases() = default;

InsertCasesRequest CdlgInsertCases::Request() const {
  InsertCasesRequest request;
  request.count = ui_->countSpin->value();
  request.atEnd = ui_->endRadio->isChecked();
  request.after = ui_->afterRadio->isChecked();
  request.caseNumber = cases_ > 0 ? ui_->caseSpin->value() : 0;
  return request;
}

void CdlgInsertCases::Refresh() {
  const bool at = ui_->atRadio->isChecked();
  ui_->caseSpin->setEnabled(at);
  ui_->sidePane->setEnabled(at);
  const std::int64_t first = InsertionCase(Request(), cases_) + 1;
  const std::int64_t last = first + ui_->countSpin->value() - 1;
  ui_->hintLabel->setText(
      first == last
          ? tr("The new case is case %L1; its cells are 0.").arg(first)
          : tr("The new cases are cases %L1 to %L2; their cells are 0.").arg(first).arg(last));
}
