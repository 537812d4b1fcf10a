#include "transfer/dialogs/ImportTextDataDlg.h"

#include <QHeaderView>
#include <QPushButton>
#include <QSignalBlocker>

#include "host/Host.h"
#include "transfer/dialogs/TextPreviewModel.h"
#include "ui_ImportTextDataDlg.h"

namespace {

constexpr int kPreviewColumnWidth = 80;

struct Choice {
  const char* text;
  char character;
};
constexpr Choice kDecimalMarks[] = {{QT_TRANSLATE_NOOP("CdlgImportTextData", "Point (1.5)"), '.'},
                                    {QT_TRANSLATE_NOOP("CdlgImportTextData", "Comma (1,5)"), ','}};
constexpr Choice kSeparators[] = {{QT_TRANSLATE_NOOP("CdlgImportTextData", "Comma"), ','},
                                  {QT_TRANSLATE_NOOP("CdlgImportTextData", "Semicolon"), ';'},
                                  {QT_TRANSLATE_NOOP("CdlgImportTextData", "Tab"), '\t'},
                                  {QT_TRANSLATE_NOOP("CdlgImportTextData", "Blank"), ' '},
                                  {QT_TRANSLATE_NOOP("CdlgImportTextData", "Vertical bar"), '|'}};

void Select(QComboBox& box, int data) {
  box.setCurrentIndex(box.findData(data));
}

}  // namespace

CdlgImportTextData::CdlgImportTextData(CTextConfirmation& confirmation, QWidget* parent)
    : QDialog(parent),
      confirmation_(confirmation),
      ui_(std::make_unique<Ui::ImportTextDataDlg>()),
      preview_(new CTextPreviewModel(this)) {
  ui_->setupUi(this);
  setWindowTitle(QString::fromStdString(confirmation_.Title()));
  ui_->previewTable->setModel(preview_);
  ui_->previewTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  ui_->previewTable->horizontalHeader()->setDefaultSectionSize(kPreviewColumnWidth);
  ui_->splitter->setStretchFactor(0, 3);
  ui_->splitter->setStretchFactor(1, 2);
  FillChoices();
  ui_->variablesGrid->SetConfirmation(&confirmation_);
  ShowSettings();
  ShowVariables();
  Connect();
  ui_->variablesGrid->setFocus();
}

CdlgImportTextData::~CdlgImportTextData() = default;

void CdlgImportTextData::FillChoices() {
  for (const auto& row : STUtils::TextEncodings()) {
    ui_->encodingBox->addItem(tr(row.shown), static_cast<int>(row.encoding));
  }
  for (const Choice& choice : kDecimalMarks) {
    ui_->decimalBox->addItem(tr(choice.text), choice.character);
  }
  for (const Choice& choice : kSeparators) {
    ui_->separatorBox->addItem(tr(choice.text), choice.character);
  }
  if (ui_->separatorBox->findData(confirmation_.Separator()) < 0) {
    ui_->separatorBox->addItem(QString(QChar::fromLatin1(confirmation_.Separator())),
                               confirmation_.Separator());
  }
  ui_->separatorLabel->setEnabled(confirmation_.HasDelimiterChoice());
  ui_->separatorBox->setEnabled(confirmation_.HasDelimiterChoice());
  QStringList missing;
  for (const std::string& text : confirmation_.MissingStrings()) {
    missing << QString::fromStdString(text);
  }
  ui_->missingList->SetStrings(missing);
  const auto& names = confirmation_.Names();
  ui_->prefixEdit->setText(QString::fromStdString(names.prefix));
  ui_->suffixEdit->setText(QString::fromStdString(names.suffix));
  ui_->digitsSpin->setValue(names.numberWidth);
}

void CdlgImportTextData::Connect() {
  for (QComboBox* const box : {ui_->encodingBox, ui_->decimalBox, ui_->separatorBox}) {
    connect(box, &QComboBox::activated, this, &CdlgImportTextData::ReadSettings);
  }
  connect(ui_->namesCheck, &QCheckBox::clicked, this, &CdlgImportTextData::ReadSettings);
  connect(ui_->missingList, &COXELMissingStrings::Changed, this,
          &CdlgImportTextData::ReadMissingStrings);
  connect(ui_->addMissingButton, &QPushButton::clicked, ui_->missingList,
          &COXELMissingStrings::Add);
  connect(ui_->removeMissingButton, &QPushButton::clicked, ui_->missingList,
          &COXELMissingStrings::RemoveCurrent);
  connect(ui_->prefixEdit, &QLineEdit::textEdited, this, &CdlgImportTextData::ReadNames);
  connect(ui_->suffixEdit, &QLineEdit::textEdited, this, &CdlgImportTextData::ReadNames);
  connect(ui_->digitsSpin, &QSpinBox::valueChanged, this, &CdlgImportTextData::ReadNames);
  connect(ui_->variablesGrid, &CUGTextDataImportVariables::Changed, this,
          &CdlgImportTextData::ShowPreview);
  connect(ui_->variablesGrid, &CUGTextDataImportVariables::NameRefused, this,
          [](const QString& problem) {
            AfxMessageBox(problem.toStdString(), MessageButtons::Ok, kDuplicateNameTitle);
          });
}

void CdlgImportTextData::ReadSettings() {
  STUtils::TextSettings settings = confirmation_.Settings();
  settings.encoding = static_cast<STUtils::TextEncoding>(ui_->encodingBox->currentData().toInt());
  settings.decimalMark = static_cast<char>(ui_->decimalBox->currentData().toInt());
  if (confirmation_.HasDelimiterChoice()) {
    settings.delimiter = static_cast<char>(ui_->separatorBox->currentData().toInt());
  }
  if (sender() == ui_->namesCheck) settings.hasNames = ui_->namesCheck->isChecked();
  std::string problem;
  const bool changed = confirmation_.Change(settings, problem);
  ShowSettings();
  ShowVariables();
  if (!changed) ShowProblem(problem);
}

void CdlgImportTextData::ReadMissingStrings() {
  std::vector<std::string> strings;
  for (const QString& text : ui_->missingList->Strings()) strings.push_back(text.toStdString());
  std::string problem;
  if (!confirmation_.SetMissingStrings(strings, problem)) ShowProblem(problem);
  ShowVariables();
}

void CdlgImportTextData::ReadNames() {
  STUtils::var_name_template_t names = confirmation_.Names();
  names.prefix = ui_->prefixEdit->text().toStdString();
  names.suffix = ui_->suffixEdit->text().toStdString();
  names.numberWidth = ui_->digitsSpin->value();
  confirmation_.SetNames(names);
  ShowVariables();
}

void CdlgImportTextData::ShowSettings() {
  ui_->namesLabel->setText(QString::fromStdString(confirmation_.NamesLabel()));
  ui_->namesCheck->setChecked(confirmation_.HasNames());
  Select(*ui_->encodingBox, static_cast<int>(confirmation_.Encoding()));
  Select(*ui_->decimalBox, confirmation_.Settings().decimalMark);
  Select(*ui_->separatorBox, confirmation_.Separator());
}

void CdlgImportTextData::ShowVariables() {
  ui_->variablesGrid->Refresh();
  ShowPreview();
}

void CdlgImportTextData::ShowPreview() {
  const QString problem = preview_->Show(confirmation_);
  ui_->problemLabel->setText(problem);
  ui_->problemLabel->setVisible(!problem.isEmpty());
  const auto selected = static_cast<qulonglong>(confirmation_.SelectedCount());
  const auto all = static_cast<qulonglong>(confirmation_.Variables().size());
  ui_->countLabel->setText(tr("%L1 of %L2 variables selected").arg(selected).arg(all));
  ui_->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(selected > 0);
}

void CdlgImportTextData::ShowProblem(const std::string& problem) {
  AfxMessageBox(problem, MessageButtons::Ok, confirmation_.Title());
}
