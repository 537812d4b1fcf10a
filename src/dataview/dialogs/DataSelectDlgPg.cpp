#include "dataview/dialogs/DataSelectDlgPg.h"

#include "dataview/dialogs/DialogLook.h"
#include "ui_DataSelectDlgPg.h"

CDataSelectDlgPg::CDataSelectDlgPg(QWidget* parent)
    : QWidget(parent), ui_(std::make_unique<Ui::DataSelectDlgPg>()) {
  ui_->setupUi(this);
  ui_->allRadio->setChecked(true);
  ui_->hintLabel->setText(
      tr("These variables are used by the run; the data set keeps all of them."));
  connect(ui_->variableList, &CVariablePicker::VariablesSelected, this, [this] {
    if (ui_->variableList->FirstSelected() >= 0) ui_->someRadio->setChecked(true);
    emit VariablesChanged();
  });
  connect(ui_->allRadio, &QRadioButton::toggled, this, &CDataSelectDlgPg::VariablesChanged);
}

CDataSelectDlgPg::~CDataSelectDlgPg() = default;

void CDataSelectDlgPg::SetVariables(const TORVIKSTRUCT& dataSet) {
  ui_->variableList->SetVariables(dataSet);
  ui_->findEdit->SetList(ui_->variableList);
}

std::vector<std::int32_t> CDataSelectDlgPg::Variables() const {
  return ui_->someRadio->isChecked() ? ui_->variableList->Selected() : std::vector<std::int32_t>();
}
