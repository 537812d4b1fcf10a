#include "dataview/dialogs/DeleteVariablesDlg.h"

#include <QPushButton>

#include "dataview/dialogs/DialogLook.h"
#include "ui_DeleteVariablesDlg.h"

CdlgDeleteVariables::CdlgDeleteVariables(const TORVIKSTRUCT& dataSet,
                                         const std::vector<std::int32_t>& selected, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::DeleteVariablesDlg>()) {
  ui_->setupUi(this);
  ui_->variableList->SetVariables(dataSet);
  ui_->findEdit->SetList(ui_->variableList);
  connect(ui_->variableList, &CVariablePicker::VariablesSelected, this,
          &CdlgDeleteVariables::Refresh);
  DressDialog(*this, 320);
  ui_->variableList->Select(selected);
  ui_->variableList->setFocus();
  Refresh();
}

CdlgDeleteVariables::~CdlgDeleteVariables() = default;

std::vector<std::int32_t> CdlgDeleteVariables::Variables() const {
  return ui_->variableList->Selected();
}

void CdlgDeleteVariables::Refresh() {
  const auto chosen = static_cast<int>(Variables().size());
  const bool all = chosen == ui_->variableList->Count();
  ui_->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(chosen > 0 && !all);
  ui_->hintLabel->setText(
      all && chosen > 0
          ? tr("At least one variable must stay.")
          : tr("%L1 of %L2 variables are deleted.").arg(chosen).arg(ui_->variableList->Count()));
}
