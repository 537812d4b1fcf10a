#include "dataview/dialogs/PrintRangeDlg.h"

#include <QPushButton>

#include "dataview/dialogs/DialogLook.h"
#include "dataview/table/TableCursor.h"
#include "ui_PrintRangeDlg.h"

CPrintRangeDlg::CPrintRangeDlg(std::int64_t cases, int variables, const TableRange& selection,
                               bool labels, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::PrintRangeDlg>()),
      cases_(cases),
      variables_(variables),
      selection_{{selection.rowBegin, selection.rowEnd},
                 selection.columnBegin,
                 selection.columnEnd,
                 false} {
  ui_->setupUi(this);
  for (QSpinBox* const spin : {ui_->fromSpin, ui_->toSpin}) {
    spin->setMaximum(static_cast<int>(cases));
    connect(spin, &QSpinBox::valueChanged, this, &CPrintRangeDlg::Refresh);
  }
  ui_->fromSpin->setValue(1);
  ui_->toSpin->setValue(static_cast<int>(cases));
  ui_->labelsCheck->setChecked(labels);
  ui_->allRadio->setChecked(true);
  ui_->selectionRadio->setEnabled(!selection.IsEmpty());
  for (QRadioButton* const radio : {ui_->allRadio, ui_->selectionRadio, ui_->fromRadio}) {
    connect(radio, &QRadioButton::toggled, this, &CPrintRangeDlg::Refresh);
  }
  DressDialog(*this);
  Refresh();
}

CPrintRangeDlg::~CPrintRangeDlg() = default;

PrintChoice CPrintRangeDlg::Choice() const {
  PrintChoice choice{{0, cases_}, 0, variables_, false};
  if (ui_->selectionRadio->isChecked()) choice = selection_;
  if (ui_->fromRadio->isChecked()) {
    choice.cases = {ui_->fromSpin->value() - 1, ui_->toSpin->value()};
  }
  choice.labels = ui_->labelsCheck->isChecked();
  return choice;
}

void CPrintRangeDlg::Refresh() {
  const bool from = ui_->fromRadio->isChecked();
  ui_->fromSpin->setEnabled(from);
  ui_->toSpin->setEnabled(from);
  const PrintChoice choice = Choice();
  const bool any = choice.cases.end > choice.cases.begin;
  ui_->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(any);
  ui_->hintLabel->setText(any ? tr("%L1 cases, %L2 variables")
                                    .arg(choice.cases.end - choice.cases.begin)
                                    .arg(choice.columnEnd - choice.columnBegin)
                              : tr("No case is printed."));
}
