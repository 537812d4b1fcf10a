#include "dataview/dialogs/NewDataDlg.h"

#include <QLocale>

#include "dataview/dialogs/DialogLook.h"
#include "ui_NewDataDlg.h"

namespace {
constexpr int kFirstVariables = 10;
constexpr int kFirstCases = 100;
}  // namespace

CNewDataDlg::CNewDataDlg(QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::NewDataDlg>()) {
  ui_->setupUi(this);
  ui_->variablesSpin->setValue(kFirstVariables);
  ui_->casesSpin->setValue(kFirstCases);
  connect(ui_->variablesSpin, &QSpinBox::valueChanged, this, &CNewDataDlg::Refresh);
  connect(ui_->casesSpin, &QSpinBox::valueChanged, this, &CNewDataDlg::Refresh);
  DressDialog(*this);
  Refresh();
  ui_->variablesSpin->selectAll();
}

CNewDataDlg::~CNewDataDlg() = default;

std::int32_t CNewDataDlg::Variables() const {
  return ui_->variablesSpin->value();
}

std::int32_t CNewDataDlg::Cases() const {
  return ui_->casesSpin->value();
}

void CNewDataDlg::Refresh() {
  const qint64 bytes = qint64{Variables()} * Cases() * 8;
  ui_->hintLabel->setText(
      tr("All cells are 0. The data take %1.").arg(QLocale::c().formattedDataSize(bytes)));
}
