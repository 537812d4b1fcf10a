#include "dataview/dialogs/DataDefCatDlg.h"

#include <QKeyEvent>
#include <QShortcut>

#include "dataview/definition/CategoryItems.h"
#include "dataview/dialogs/DialogLook.h"
#include "host/Host.h"
#include "host/Text.h"
#include "ui_DataDefCatDlg.h"

CDataDefCatDlg::CDataDefCatDlg(TORVIKSTRUCT& dataSet, std::int32_t variable, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::DataDefCatDlg>()),
      data_(dataSet),
      variable_(variable) {
  ui_->setupUi(this);
  ui_->valueEdit->setMaxLength(kCategoryValueCharacters);
  ui_->labelEdit->setMaxLength(kCategoryLabelCharacters);
  const CString& name = dataSet.variable[static_cast<std::size_t>(variable)].name;
  setWindowTitle(tr("Category Labels for %1 ...").arg(DisplayText(name)));
  for (const CString& item : CategoryItems(dataSet, variable)) Append(item);
  connect(ui_->addButton, &QPushButton::clicked, this, &CDataDefCatDlg::Add);
  // Enter in either field adds; the fields are then empty and Enter means OK again.
  for (QLineEdit* const edit : {ui_->valueEdit, ui_->labelEdit}) {
    connect(edit, &QLineEdit::textChanged, this, &CDataDefCatDlg::Refresh);
  }
  connect(ui_->deleteButton, &QPushButton::clicked, this, &CDataDefCatDlg::Delete);
  auto* const deleteKey = new QShortcut(QKeySequence::Delete, ui_->categoryList);
  deleteKey->setContext(Qt::WidgetShortcut);
  connect(deleteKey, &QShortcut::activated, this, &CDataDefCatDlg::Delete);
  connect(ui_->categoryList, &QListWidget::itemSelectionChanged, this, &CDataDefCatDlg::Refresh);
  DressDialog(*this, 380);
  Refresh();
}

CDataDefCatDlg::~CDataDefCatDlg() = default;

bool CDataDefCatDlg::AppliesToAll() const {
  return ui_->allCheck->isChecked();
}

void CDataDefCatDlg::Append(const CString& item) {
  items_.push_back(item);
  ui_->categoryList->addItem(QString::fromStdString(TextForDisplay(item)));
}

void CDataDefCatDlg::Add() {
  CString problem;
  const auto item = NewCategoryItem(TypedText(ui_->valueEdit->text()),
                                    TypedText(ui_->labelEdit->text()), problem);
  if (!item) {
    AfxMessageBox(problem);
    (ui_->valueEdit->text().isEmpty() ? ui_->valueEdit : ui_->labelEdit)->setFocus();
    return;
  }
  Append(*item);
  ui_->categoryList->scrollToBottom();
  ui_->valueEdit->clear();
  ui_->labelEdit->clear();
  ui_->valueEdit->setFocus();
}

void CDataDefCatDlg::Delete() {
  for (int row = ui_->categoryList->count() - 1; row >= 0; --row) {
    if (!ui_->categoryList->item(row)->isSelected()) continue;
    delete ui_->categoryList->takeItem(row);
    items_.erase(items_.begin() + row);
  }
  Refresh();
}

void CDataDefCatDlg::Refresh() {
  const bool typing = !ui_->valueEdit->text().isEmpty() || !ui_->labelEdit->text().isEmpty();
  ui_->addButton->setDefault(typing);
  ui_->buttonBox->button(QDialogButtonBox::Ok)->setDefault(!typing);
  ui_->deleteButton->setEnabled(!ui_->categoryList->selectedItems().isEmpty());
  ui_->hintLabel->setText(tr("%1 of %2 categories. Labels have up to %3 characters.")
                              .arg(ui_->categoryList->count())
                              .arg(kCategorySlots)
                              .arg(kCategoryLabelCharacters));
}

void CDataDefCatDlg::accept() {
  CString problem;
  if (TakeCategoryItems(items_, data_, variable_, problem)) return QDialog::accept();
  AfxMessageBox(problem);
}
