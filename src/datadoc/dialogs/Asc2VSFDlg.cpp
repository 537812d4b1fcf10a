#include "datadoc/dialogs/Asc2VSFDlg.h"

#include "ui_Asc2VSFDlg.h"

CAsc2VSFDlg::CAsc2VSFDlg(const ASC2VSF& proposal, bool mayHaveNames, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::Asc2VSFDlg>()) {
  ui_->setupUi(this);
  ui_->variableSpin->setRange(1, kMostTextVariables);
  ui_->variableSpin->setValue(proposal.variables);
  ui_->variableSpin->selectAll();
  ui_->namesCheck->setChecked(mayHaveNames && proposal.namesOnTop);
  ui_->namesCheck->setEnabled(mayHaveNames);
}

CAsc2VSFDlg::~CAsc2VSFDlg() = default;

ASC2VSF CAsc2VSFDlg::Chosen() const {
  return {ui_->variableSpin->value(), ui_->namesCheck->isChecked()};
}
