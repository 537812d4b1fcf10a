#include "dataview/dialogs/FindValueDlg.h"

#include <algorithm>

#include "dataview/CellText.h"
#include "dataview/dialogs/DialogLook.h"
#include "ui_FindValueDlg.h"

CFindValueDlg::CFindValueDlg(QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::FindValueDlg>()) {
  ui_->setupUi(this);
  ui_->valueRadio->setChecked(true);
  connect(ui_->nextButton, &QPushButton::clicked, this, [this] { emit FindAsked(false); });
  connect(ui_->previousButton, &QPushButton::clicked, this, [this] { emit FindAsked(true); });
  connect(ui_->closeButton, &QPushButton::clicked, this, &QDialog::reject);
  connect(ui_->valueRadio, &QRadioButton::toggled, this, &CFindValueDlg::Refresh);
  for (QLineEdit* const edit : {ui_->lowEdit, ui_->highEdit}) {
    connect(edit, &QLineEdit::textChanged, this, &CFindValueDlg::Refresh);
  }
  DressDialog(*this, 440);
  ui_->lowEdit->setFocus();
  Refresh();
}

CFindValueDlg::~CFindValueDlg() = default;

void CFindValueDlg::SetColumn(int column, const QString& name) {
  column_ = column;
  ui_->columnCheck->setText(tr("&In the variable %1 only").arg(QString(name).replace('&', "&&")));
  ui_->columnCheck->setEnabled(column >= 0);
}

std::optional<FindRequest> CFindValueDlg::Request() const {
  FindRequest request;
  request.column = ui_->columnCheck->isChecked() ? column_ : -1;
  request.missing = ui_->missingRadio->isChecked();
  if (request.missing) return request;
  const QString low = ui_->lowEdit->text();
  const QString high = ui_->highEdit->text().trimmed().isEmpty() ? low : ui_->highEdit->text();
  if (low.trimmed().isEmpty()) return std::nullopt;
  const std::optional<double> from = ParseCellText(low.toStdString());
  const std::optional<double> to = ParseCellText(high.toStdString());
  if (!from || !to) return std::nullopt;
  request.low = std::min(*from, *to);
  request.high = std::max(*from, *to);
  return request;
}

void CFindValueDlg::ShowResult(const QString& text) {
  ui_->hintLabel->setText(text);
}

void CFindValueDlg::Refresh() {
  const bool value = ui_->valueRadio->isChecked();
  ui_->lowEdit->setEnabled(value);
  ui_->highEdit->setEnabled(value);
  const bool complete = Request().has_value();
  ui_->nextButton->setEnabled(complete);
  ui_->previousButton->setEnabled(complete);
  const bool wrong = !complete && !ui_->lowEdit->text().trimmed().isEmpty();
  ui_->hintLabel->setText(wrong ? tr("Please enter a number.") : QString());
}
