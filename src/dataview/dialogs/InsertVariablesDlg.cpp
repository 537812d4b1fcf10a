#include "dataview/dialogs/InsertVariablesDlg.h"

#include <QPushButton>
#include <algorithm>

#include "dataview/dialogs/DialogLook.h"
#include "dataview/operations/Limits.h"
#include "ui_InsertVariablesDlg.h"

CdlgInsertVariables::CdlgInsertVariables(const TORVIKSTRUCT& dataSet, std::int32_t selected,
                                         QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::InsertVariablesDlg>()), data_(dataSet) {
  ui_->setupUi(this);
  const std::int32_t room = RoomBeside(dataSet.variables, kMostVariables);
  ui_->countSpin->setMaximum(std::max(room, 1));
  for (std::int32_t i = 0; i < dataSet.variables; ++i) {
    ui_->variableBox->addItem(DisplayText(dataSet.variable[static_cast<std::size_t>(i)].name));
  }
  ui_->variableBox->setCurrentIndex(std::max(selected, 0));
  ui_->beforeRadio->setChecked(true);
  (dataSet.variables > 0 ? ui_->atRadio : ui_->endRadio)->setChecked(true);
  ui_->atRadio->setEnabled(dataSet.variables > 0);
  ui_->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(room > 0);
  connect(ui_->atRadio, &QRadioButton::toggled, this, &CdlgInsertVariables::Refresh);
  connect(ui_->countSpin, &QSpinBox::valueChanged, this, &CdlgInsertVariables::Refresh);
  DressDialog(*this);
  Refresh();
  ui_->countSpin->selectAll();
}

CdlgInsertVariables::~CdlgInsertVariables() = default;

InsertVariablesRequest CdlgInsertVariables::Request() const {
  InsertVariablesRequest request;
  request.count = ui_->countSpin->value();
  request.atEnd = ui_->endRadio->isChecked();
  request.after = ui_->afterRadio->isChecked();
  request.variable = std::max(ui_->variableBox->currentIndex(), 0);
  return request;
}

void CdlgInsertVariables::Refresh() {
  const bool at = ui_->atRadio->isChecked();
  ui_->variableBox->setEnabled(at);
  ui_->sidePane->setEnabled(at);
  const std::int32_t first = data_.variables + 1;
  const std::int32_t last = data_.variables + ui_->countSpin->value();
  ui_->hintLabel->setText(
      first == last ? tr("The new variable is named var%1; its cells are 0.").arg(first)
                    : tr("They are named var%1 to var%2; their cells are 0.").arg(first).arg(last));
}
