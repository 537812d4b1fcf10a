#include "dataview/dialogs/ChooseVariableDlg.h"

#include <QPushButton>

#include "datadoc/DataDoc.h"
#include "dataview/dialogs/DialogLook.h"
#include "syntax/OutputDialog.h"
#include "syntax/dialogs/DataOutDlg.h"
#include "ui_ChooseVariableDlg.h"

CChooseVariableDlg::CChooseVariableDlg(const TORVIKSTRUCT& dataSet, std::int32_t chosen,
                                       const Texts& texts, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::ChooseVariableDlg>()) {
  ui_->setupUi(this);
  setWindowTitle(texts.title);
  ui_->noneRadio->setText(texts.none);
  ui_->oneRadio->setText(texts.one);
  ui_->hintLabel->setText(texts.hint);
  ui_->variableList->SetSingle();
  ui_->variableList->SetVariables(dataSet);
  ui_->findEdit->SetList(ui_->variableList);
  const bool any = IsVariableNumber(dataSet, chosen);
  (any ? ui_->oneRadio : ui_->noneRadio)->setChecked(true);
  if (any) ui_->variableList->Select({chosen - 1});
  // Choosing a variable means to use it.
  connect(ui_->variableList, &CVariablePicker::VariablesSelected, this, [this] {
    if (ui_->variableList->FirstSelected() >= 0) ui_->oneRadio->setChecked(true);
    Refresh();
  });
  connect(ui_->noneRadio, &QRadioButton::toggled, this, &CChooseVariableDlg::Refresh);
  DressDialog(*this, 360);
  (any ? static_cast<QWidget*>(ui_->variableList) : ui_->noneRadio)->setFocus();
  Refresh();
}

CChooseVariableDlg::~CChooseVariableDlg() = default;

std::int32_t CChooseVariableDlg::Variable() const {
  return ui_->noneRadio->isChecked() ? 0 : ui_->variableList->FirstSelected() + 1;
}

void CChooseVariableDlg::Refresh() {
  const bool complete = ui_->noneRadio->isChecked() || Variable() > 0;
  ui_->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(complete);
}

CDataWeightDlg::CDataWeightDlg(CDataDoc& document, QWidget* parent)
    : CChooseVariableDlg(*document.GetTorvik(), document.GetTorvik()->weightVariable,
                         {tr("Weight Cases"), tr("Do &not weight cases"), tr("&Weight cases by:"),
                          tr("The choice is saved with the data set at once.")},
                         parent) {
  connect(ui_->outputButton, &QPushButton::clicked, this, [this, &document] {
    CDataOutDlg(this, document.GetOutputOptions(), kOutputOther,
                TestsFor(*document.GetTorvik(), {}))
        .exec();
  });
}

CdlgDataGroupVariable::CdlgDataGroupVariable(const TORVIKSTRUCT& dataSet, QWidget* parent)
    : CChooseVariableDlg(dataSet, dataSet.groupVariable,
                         {tr("Group Variable"), tr("&No groups"), tr("The &groups are told by:"),
                          tr("The choice is saved with the data set at once.")},
                         parent) {
  ui_->outputButton->hide();
}
