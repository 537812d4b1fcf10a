#include "dataview/dialogs/DataDefMissDlg.h"

#include "dataview/definition/MissingEntries.h"
#include "dataview/dialogs/DialogLook.h"
#include "ui_DataDefMissDlg.h"

CDataDefMissDlg::CDataDefMissDlg(VARSTRUCT& variable, TORVIKSTRUCT& dataSet, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::DataDefMissDlg>()),
      variable_(variable),
      data_(dataSet) {
  ui_->setupUi(this);
  variableEdits_ = {ui_->variableValue1, ui_->variableValue2, ui_->variableValue3, ui_->variableLow,
                    ui_->variableHigh};
  globalEdits_ = {ui_->globalValue1, ui_->globalValue2, ui_->globalValue3, ui_->globalLow,
                  ui_->globalHigh};
  setWindowTitle(tr("Missing Values for %1 ...").arg(DisplayText(variable.name)));
  const MissingEntries entries = OpenMissingEntries(variable, dataSet);
  for (std::size_t i = 0; i < variableEdits_.size(); ++i) {
    variableEdits_[i]->setText(QString::fromStdString(entries.variable[i]));
    globalEdits_[i]->setText(QString::fromStdString(entries.global[i]));
  }
  (entries.noMissing ? ui_->noneRadio : ui_->someRadio)->setChecked(true);
  (entries.deletion == kListwise ? ui_->listwiseRadio : ui_->pairwiseRadio)->setChecked(true);
  connect(ui_->noneRadio, &QRadioButton::toggled, this, &CDataDefMissDlg::EnableFields);
  EnableFields();
  DressDialog(*this);
}

CDataDefMissDlg::~CDataDefMissDlg() = default;

bool CDataDefMissDlg::AppliesToAll() const {
  return ui_->allCheck->isChecked();
}

void CDataDefMissDlg::EnableFields() {
  const bool some = ui_->someRadio->isChecked();
  for (QLineEdit* const edit : variableEdits_) edit->setEnabled(some);
}

void CDataDefMissDlg::accept() {
  MissingEntries entries;
  entries.noMissing = ui_->noneRadio->isChecked();
  entries.deletion = ui_->listwiseRadio->isChecked() ? kListwise : kPairwise;
  for (std::size_t i = 0; i < variableEdits_.size(); ++i) {
    entries.variable[i] = variableEdits_[i]->text().toStdString();
    entries.global[i] = globalEdits_[i]->text().toStdString();
  }
  TakeMissingEntries(entries, variable_, data_);
  QDialog::accept();
}
