#include "dataview/table/GoToCaseDlg.h"

#include <QPushButton>
#include <QRegularExpression>
#include <algorithm>

#include "ui_GoToCaseDlg.h"

CGoToCaseDlg::CGoToCaseDlg(std::int64_t cases, const QStringList& variables,
                           const TableCell& current, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::GoToCaseDlg>()), cases_(cases) {
  ui_->setupUi(this);
  ui_->variableBox->addItems(variables);
  ui_->variableBox->setCurrentIndex(std::max(current.column, 0));
  ui_->caseEdit->setText(QString::number(std::max<std::int64_t>(current.row, 0) + 1));
  ui_->caseEdit->selectAll();
  connect(ui_->caseEdit, &QLineEdit::textChanged, this, &CGoToCaseDlg::Refresh);
  Refresh();
}

CGoToCaseDlg::~CGoToCaseDlg() = default;

TableCell CGoToCaseDlg::Chosen() const {
  const std::int64_t number = CaseNumberFromText(ui_->caseEdit->text(), cases_);
  return {std::max<std::int64_t>(number - 1, 0), std::max(ui_->variableBox->currentIndex(), 0)};
}

void CGoToCaseDlg::Refresh() {
  const bool found = CaseNumberFromText(ui_->caseEdit->text(), cases_) > 0;
  ui_->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(found);
  ui_->hintLabel->setText(tr("A number from 1 to %L1.").arg(cases_));
}

std::int64_t CaseNumberFromText(const QString& text, std::int64_t cases) {
  static const QRegularExpression plain("^[0-9]+$");
  static const QRegularExpression grouped("^[0-9]{1,3}([ ,.'][0-9]{3})+$");
  static const QRegularExpression mark("[ ,.']");
  QString digits = text.trimmed();
  if (grouped.match(digits).hasMatch()) digits.remove(mark);
  if (!plain.match(digits).hasMatch()) return -1;
  bool read = false;
  const qlonglong number = digits.toLongLong(&read);
  return read && number >= 1 && number <= cases ? number : -1;
}
