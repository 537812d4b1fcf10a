#include "dataview/dialogs/DataDefDlg.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>
#include <algorithm>

#include "datadoc/DataDoc.h"
#include "dataview/definition/ApplyToVariables.h"
#include "dataview/dialogs/DataDefAddDlg.h"
#include "dataview/dialogs/DataDefCatDlg.h"
#include "dataview/dialogs/DataDefMissDlg.h"
#include "dataview/dialogs/DataDefTypeDlg.h"
#include "dataview/dialogs/DialogLook.h"
#include "ui_DataDefDlg.h"

CdlgDataDef::CdlgDataDef(const CDataDoc& document, std::int32_t current, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::DataDefDlg>()),
      capacity_(document.GetCapacity()),
      copy_(document.GetTorvikCopy(capacity_, 0)) {
  ui_->setupUi(this);
  renameEdit_ = new QLineEdit(ui_->variableList->viewport());
  renameEdit_->setObjectName("renameEdit");
  renameEdit_->setFrame(false);
  renameEdit_->hide();
  renameEdit_->installEventFilter(this);
  if (copy_ != nullptr) ui_->variableList->SetVariables(*copy_);
  ui_->findEdit->SetList(ui_->variableList);
  connect(ui_->insertButton, &QPushButton::clicked, this, &CdlgDataDef::Insert);
  connect(ui_->renameButton, &QPushButton::clicked, this, &CdlgDataDef::StartRename);
  connect(ui_->variableList, &QListView::doubleClicked, this, &CdlgDataDef::StartRename);
  connect(ui_->typeButton, &QPushButton::clicked, this, &CdlgDataDef::AskForType);
  connect(ui_->missingButton, &QPushButton::clicked, this, &CdlgDataDef::AskForMissing);
  connect(ui_->categoryButton, &QPushButton::clicked, this, &CdlgDataDef::AskForCategories);
  connect(ui_->variableList, &CVariablePicker::VariablesSelected, this, &CdlgDataDef::Refresh);
  auto* const renameKey = new QShortcut(QKeySequence(Qt::Key_F2), ui_->variableList);
  renameKey->setContext(Qt::WidgetShortcut);
  connect(renameKey, &QShortcut::activated, this, &CdlgDataDef::StartRename);
  DressDialog(*this, 440);
  if (current >= 0) ui_->variableList->Select({current});
  ui_->variableList->setFocus();
  Refresh();
}

CdlgDataDef::~CdlgDataDef() {
  renameEdit_->removeEventFilter(this);
}

VARSTRUCT& CdlgDataDef::First() {
  return copy_->variable[static_cast<std::size_t>(ui_->variableList->FirstSelected())];
}

void CdlgDataDef::Refresh() {
  ForgetRename();
  const bool any = copy_ != nullptr && ui_->variableList->FirstSelected() >= 0;
  for (QPushButton* const button :
       {ui_->renameButton, ui_->typeButton, ui_->categoryButton, ui_->missingButton}) {
    button->setEnabled(any);
  }
  ui_->insertButton->setEnabled(copy_ != nullptr);
}

void CdlgDataDef::Insert() {
  CdlgDataDefAdd dialog(copy_->variables, this);
  if (dialog.exec() != Accepted) return;
  const std::int32_t firstNew = copy_->variables;
  AppendVariables(dialog.Result(), *copy_, capacity_);
  ui_->variableList->SetVariables(*copy_);
  ui_->findEdit->SetList(ui_->variableList);
  ui_->variableList->Select({firstNew});
  ui_->variableList->setFocus();
}

// The edit lies over the first selected name.
void CdlgDataDef::StartRename() {
  const std::int32_t variable = ui_->variableList->FirstSelected();
  if (variable < 0) return;
  const QModelIndex index = ui_->variableList->model()->index(variable, 0);
  ui_->variableList->scrollTo(index);
  QRect place = ui_->variableList->visualRect(index);
  const int height = std::max(place.height(), renameEdit_->sizeHint().height());
  place = QRect(place.left(), place.center().y() - height / 2, place.width(), height);
  renamed_ = variable;
  renameEdit_->setGeometry(place);
  renameEdit_->setText(ui_->variableList->Name(variable));
  renameEdit_->selectAll();
  renameEdit_->show();
  renameEdit_->setFocus();
}

void CdlgDataDef::EndRename() {
  renameEdit_->hide();
  if (renamed_ < 0) return;
  const std::int32_t variable = renamed_;
  renamed_ = -1;
  // A name that was left alone keeps its bytes, shown or not.
  if (renameEdit_->text() != ui_->variableList->Name(variable)) {
    RenameVariable(*copy_, variable, TypedText(renameEdit_->text()));
    const CString& name = copy_->variable[static_cast<std::size_t>(variable)].name;
    ui_->variableList->SetName(variable, DisplayText(name));
  }
  ui_->variableList->Select({variable});
}

void CdlgDataDef::ForgetRename() {
  renamed_ = -1;
  renameEdit_->hide();
}

bool CdlgDataDef::eventFilter(QObject* object, QEvent* event) {
  if (object != renameEdit_) return QDialog::eventFilter(object, event);
  if (event->type() == QEvent::FocusOut) EndRename();
  if (event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Escape) return false;
  ui_->variableList->setFocus();  // the edit loses the focus, which ends the rename
  return true;
}

void CdlgDataDef::AskForType() {
  CDataDefTypeDlg dialog(First(), this);
  if (dialog.exec() != Accepted) return;
  ApplyType(*copy_, ui_->variableList->Selected(), dialog.AppliesToAll());
  const std::vector<std::int32_t> selected = ui_->variableList->Selected();
  ui_->variableList->SetVariables(*copy_);
  ui_->variableList->Select(selected);
}

void CdlgDataDef::AskForMissing() {
  CDataDefMissDlg dialog(First(), *copy_, this);
  if (dialog.exec() == Accepted) {
    ApplyMissing(*copy_, ui_->variableList->Selected(), dialog.AppliesToAll());
  }
}

void CdlgDataDef::AskForCategories() {
  CDataDefCatDlg dialog(*copy_, ui_->variableList->FirstSelected(), this);
  if (dialog.exec() == Accepted) {
    ApplyCategories(*copy_, ui_->variableList->Selected(), dialog.AppliesToAll());
  }
}

// Neither closes the dialog while a name is being edited.
void CdlgDataDef::accept() {
  if (renameEdit_->hasFocus()) return ui_->variableList->setFocus();
  QDialog::accept();
}

void CdlgDataDef::reject() {
  if (renameEdit_->hasFocus()) return ui_->variableList->setFocus();
  QDialog::reject();
}
