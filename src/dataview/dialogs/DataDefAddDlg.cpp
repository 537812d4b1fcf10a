#include "dataview/dialogs/DataDefAddDlg.h"

#include <QPushButton>

#include "dataview/dialogs/DialogLook.h"
#include "host/Host.h"
#include "ui_DataDefAddDlg.h"

CdlgDataDefAdd::CdlgDataDefAdd(std::int32_t present, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::DataDefAddDlg>()), present_(present) {
  ui_->setupUi(this);
  ui_->hintLabel->setText(tr("Names have up to %1 characters.").arg(kNameBytes));
  DressDialog(*this, 420);
  QPushButton* const ok = ui_->buttonBox->button(QDialogButtonBox::Ok);
  ok->setEnabled(false);
  connect(ui_->nameEdit, &QLineEdit::textChanged, this,
          [ok](const QString& text) { ok->setEnabled(!text.trimmed().isEmpty()); });
}

CdlgDataDefAdd::~CdlgDataDefAdd() = default;

void CdlgDataDefAdd::accept() {
  CString problem;
  const auto added = ParseNewVariables(TypedText(ui_->nameEdit->text()), present_, problem);
  if (!added) {
    AfxMessageBox(problem);
    ui_->nameEdit->setFocus();
    return;
  }
  result_ = *added;
  QDialog::accept();
}
