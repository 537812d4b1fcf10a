#include "datadoc/dialogs/MatrixTextDlg.h"

#include <algorithm>

#include "datadoc/MatrixParts.h"
#include "datadoc/TextOpening.h"
#include "ui_MatrixTextDlg.h"

namespace {

QString ShownOrder(const CString& order) {
  QString text = QString::fromStdString(order).replace(',', ", ");
  text.replace("deviations", "standard deviations");
  text[0] = text[0].toUpper();
  return text;
}

}  // namespace

CMatrixTextDlg::CMatrixTextDlg(const EXTERNDATA& kind, bool asksForVariables, int variables,
                               QWidget* parent)
    : QDialog(parent), kind_(kind), ui_(std::make_unique<Ui::MatrixTextDlg>()) {
  ui_->setupUi(this);
  ui_->variableSpin->setRange(1, kMostTextVariables);
  ui_->variableSpin->setValue(variables);
  ui_->variableSpin->selectAll();
  ui_->variableLabel->setVisible(asksForVariables);
  ui_->variableSpin->setVisible(asksForVariables);
  ui_->fullButton->setChecked(kind.fullMatrix != 0);
  for (const CString& order : MatrixOrders()) {
    EXTERNDATA parts = kind;
    SetMatrixParts(order, parts);
    ui_->orderBox->addItem(ShownOrder(order), QString::fromStdString(order));
    if (MatrixParts(parts) == MatrixParts(kind)) {
      ui_->orderBox->setCurrentIndex(ui_->orderBox->count() - 1);
    }
  }
}

CMatrixTextDlg::~CMatrixTextDlg() = default;

EXTERNDATA CMatrixTextDlg::ChosenKind() const {
  EXTERNDATA kind = kind_;
  SetMatrixParts(ui_->orderBox->currentData().toString().toStdString(), kind);
  kind.ma_type = std::max(kind.ma_type, 1);
  kind.fullMatrix = ui_->fullButton->isChecked() ? 1 : 0;
  return kind;
}

int CMatrixTextDlg::Variables() const {
  return ui_->variableSpin->value();
}
