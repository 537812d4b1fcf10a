#include "syntax/dialogs/DataOutDlg.h"

#include <QFile>
#include <QFont>

#include "host/Host.h"
#include "ui_DataOutDlg.h"

namespace {

// File names are bytes of the file system.
QString NameText(const CString& name) {
  return QFile::decodeName(name.c_str());
}
CString NameBytes(const QString& name) {
  return QFile::encodeName(name).toStdString();
}

}  // namespace

CDataOutDlg::CDataOutDlg(QWidget* parent, TRVOUSTRUCT* options, int mode, int tests)
    : QDialog(parent),
      ui_(std::make_unique<Ui::DataOutDlg>()),
      options_(options),
      state_(OpenOutputDialog(*options, mode, tests)) {
  ui_->setupUi(this);
  CollectControls();
  Fill();
  ShowEnabled();
  Connect();
}

CDataOutDlg::~CDataOutDlg() = default;

void CDataOutDlg::CollectControls() {
  saveRows_ = {
      {SaveBox::Matrix, ui_->saveMatrixCheck, ui_->matrixFileEdit, ui_->matrixFileButton, nullptr},
      {SaveBox::Means, ui_->saveMeansCheck, ui_->meansFileEdit, ui_->meansFileButton, nullptr},
      {SaveBox::Deviations, ui_->saveDeviationsCheck, ui_->deviationsFileEdit,
       ui_->deviationsFileButton, nullptr},
      {SaveBox::AsymptoticCovariances, ui_->saveCovariancesCheck, ui_->covariancesFileEdit,
       ui_->covariancesFileButton, ui_->printCovariancesCheck},
      {SaveBox::AsymptoticVariances, ui_->saveVariancesCheck, ui_->variancesFileEdit,
       ui_->variancesFileButton, ui_->printVariancesCheck},
  };
  checks_ = {
      {ui_->printCovariancesCheck, &TRVOUSTRUCT::bPrintAC},
      {ui_->printVariancesCheck, &TRVOUSTRUCT::bPrintAV},
      {ui_->saveDataCheck, &TRVOUSTRUCT::bSaveData},
      {ui_->rewindCheck, &TRVOUSTRUCT::bRewind},
      {ui_->wideCheck, &TRVOUSTRUCT::bWidePrint},
      {ui_->tablesCheck, &TRVOUSTRUCT::bBivariateTables},
      {ui_->multivariateCheck, &TRVOUSTRUCT::bMultivariateTests},
      {ui_->bivariateCheck, &TRVOUSTRUCT::bBivariateTests},
  };
  numbers_ = {
      {ui_->seedEdit, &OutputDialog::seed, OutputEdit::Seed},
      {ui_->repetitionsEdit, &OutputDialog::repetitions, OutputEdit::Repetitions},
      {ui_->widthEdit, &OutputDialog::width, OutputEdit::Width},
      {ui_->decimalsEdit, &OutputDialog::decimals, OutputEdit::Decimals},
  };
}

void CDataOutDlg::Fill() {
  QFont bold = font();
  bold.setBold(true);
  for (QLabel* const title : {ui_->matrixTitle, ui_->meansTitle, ui_->deviationsTitle,
                              ui_->covariancesTitle, ui_->variancesTitle, ui_->dataTitle,
                              ui_->repetitionsTitle, ui_->seedTitle, ui_->printTitle}) {
    title->setFont(bold);
  }
  // It stands there as a label: nothing depends on it.
  ui_->vexmorCheck->setEnabled(false);
  for (const char* const text : kMatrixTexts) ui_->matrixBox->addItem(text);
  ui_->matrixBox->setCurrentIndex(state_.selection);
  for (const SaveRow& row : saveRows_) {
    const SaveFields fields = FieldsOf(row.box);
    row.check->setChecked(state_.values.*fields.checked != 0);
    row.edit->setText(NameText(state_.values.*fields.file));
  }
  ui_->dataFileEdit->setText(NameText(state_.values.strDataFile));
  for (const Check& check : checks_) check.check->setChecked(state_.values.*check.value != 0);
  (state_.values.nSeedMode == 0 ? ui_->randomSeedRadio : ui_->setSeedRadio)->setChecked(true);
  for (const Number& number : numbers_) {
    number.edit->setText(QString::fromStdString(state_.*number.text));
  }
}

void CDataOutDlg::Connect() {
  connect(ui_->matrixBox, &QComboBox::currentIndexChanged, this, [this](int selection) {
    OnMatrixSelected(state_, selection);
    ShowEnabled();
  });
  for (const SaveRow& row : saveRows_) {
    connect(row.check, &QCheckBox::toggled, this,
            [this, row](bool checked) { SaveBoxClicked(row, checked); });
    connect(static_cast<QToolButton*>(row.button), &QToolButton::clicked, this,
            [this, row] { ChooseFile(row.edit); });
  }
  connect(ui_->dataFileButton, &QToolButton::clicked, this,
          [this] { ChooseFile(ui_->dataFileEdit); });
}

void CDataOutDlg::SaveBoxClicked(const SaveRow& row, bool checked) {
  const OutputEdit focus = OnSaveBoxClicked(state_, row.box, checked);
  ShowEnabled();
  Focus(focus);
}

void CDataOutDlg::ShowEnabled() {
  const OutputEnabled& enabled = state_.enabled;
  for (QWidget* const widget : std::initializer_list<QWidget*>{
           ui_->dataTitle, ui_->saveDataCheck, ui_->dataFileEdit, ui_->dataFileButton,
           ui_->widthLabel, ui_->widthEdit, ui_->decimalsLabel, ui_->decimalsEdit}) {
    widget->setEnabled(enabled.data);
  }
  for (QWidget* const widget :
       std::initializer_list<QWidget*>{ui_->covariancesTitle, ui_->saveCovariancesCheck,
                                       ui_->variancesTitle, ui_->saveVariancesCheck}) {
    widget->setEnabled(enabled.asymptotic);
  }
  for (const SaveRow& row : saveRows_) {
    const bool usable = enabled.file[static_cast<std::size_t>(row.box)];
    row.edit->setEnabled(usable);
    row.button->setEnabled(usable);
    if (row.print != nullptr) row.print->setEnabled(usable);
  }
  ui_->tablesCheck->setEnabled(enabled.bivariateTables);
  ui_->bivariateCheck->setEnabled(enabled.bivariateTests);
  ui_->multivariateCheck->setEnabled(enabled.multivariateTests);
}

void CDataOutDlg::Read() {
  for (const SaveRow& row : saveRows_) {
    state_.values.*FieldsOf(row.box).file = NameBytes(row.edit->text());
  }
  state_.values.strDataFile = NameBytes(ui_->dataFileEdit->text());
  for (const Check& check : checks_) {
    state_.values.*check.value = check.check->isChecked() ? 1 : 0;
  }
  state_.values.nSeedMode = ui_->setSeedRadio->isChecked() ? 1 : 0;
  for (const Number& number : numbers_) state_.*number.text = number.edit->text().toStdString();
}

void CDataOutDlg::accept() {
  Read();
  const OutputOkResult result = OnOutputOk(state_, *options_);
  if (result.close) return QDialog::accept();
  AfxMessageBox(result.message, MessageButtons::Ok, result.caption);
  Focus(result.focus);
}

void CDataOutDlg::Focus(OutputEdit edit) {
  QLineEdit* target = nullptr;
  for (const SaveRow& row : saveRows_) {
    if (FieldsOf(row.box).edit == edit) target = row.edit;
  }
  for (const Number& number : numbers_) {
    if (number.name == edit) target = number.edit;
  }
  if (target == nullptr) return;
  target->setFocus();
  target->selectAll();
}

void CDataOutDlg::ChooseFile(QLineEdit* edit) {
  FileDialogRequest request;
  request.save = true;
  request.flags = FileDialogRequest::kSaveFlags;
  request.title = tr("Choose a File").toStdString();
  request.fileName = NameBytes(edit->text());
  request.rows = {{tr("All Files (*)").toStdString(), "*", ""}};
  FileDialogChoice choice;
  if (Host().AskForFile(request, choice)) edit->setText(NameText(choice.path));
  edit->setFocus();
}
