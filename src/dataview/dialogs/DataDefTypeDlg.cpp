#include "dataview/dialogs/DataDefTypeDlg.h"

#include "dataview/dialogs/DialogLook.h"
#include "ui_DataDefTypeDlg.h"

CDataDefTypeDlg::CDataDefTypeDlg(VARSTRUCT& variable, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::DataDefTypeDlg>()), variable_(variable) {
  ui_->setupUi(this);
  radios_ = {ui_->ordinalRadio, ui_->continuousRadio, ui_->aboveRadio, ui_->belowRadio,
             ui_->bothRadio};
  setWindowTitle(tr("Variable Types for %1 ...").arg(DisplayText(variable.name)));
  const auto type = static_cast<std::size_t>(variable.type);
  if (type < radios_.size()) {
    radios_[type]->setChecked(true);
    radios_[type]->setFocus();
  }
  DressDialog(*this);
}

CDataDefTypeDlg::~CDataDefTypeDlg() = default;

bool CDataDefTypeDlg::AppliesToAll() const {
  return ui_->allCheck->isChecked();
}

void CDataDefTypeDlg::accept() {
  for (std::size_t type = 0; type < radios_.size(); ++type) {
    if (radios_[type]->isChecked()) variable_.type = static_cast<std::int32_t>(type);
  }
  QDialog::accept();
}
