#include "syntax/dialogs/ProbitDlg.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <algorithm>

#include "syntax/dialogs/DataFTPRGDlg.h"
#include "syntax/dialogs/DataMTPRGDlg.h"
#include "syntax/dialogs/VariableList.h"

namespace {

void ForgetOthers(const NameList& kept, NameList& names) {
  const auto isOther = [&kept](const CString& name) {
    return std::find(kept.begin(), kept.end(), name) == kept.end();
  };
  names.erase(std::remove_if(names.begin(), names.end(), isOther), names.end());
}

void AddLine(const QString& what, const NameList& names, QStringList& lines) {
  QStringList shown;
  for (const CString& name : names) shown << QString::fromStdString(ShownName(name));
  if (!shown.isEmpty()) lines << what + shown.join(", ");
}

}  // namespace

void CProbitDlg::AddThresholdButtons(const QString& marginal, const QString& fix) {
  auto* const row = new QWidget(this);
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  marginalButton_ = new QPushButton(marginal, row);
  marginalButton_->setObjectName("marginalButton");
  fixButton_ = new QPushButton(fix, row);
  fixButton_->setObjectName("fixButton");
  for (QPushButton* const button : {marginalButton_, fixButton_}) {
    button->setAutoDefault(false);
    layout->addWidget(button);
  }
  layout->addStretch(1);
  Form().AddRow(row);
  summary_ = new QLabel(this);
  summary_->setObjectName("summaryLabel");
  summary_->setTextFormat(Qt::PlainText);
  summary_->setWordWrap(true);
  Form().AddRow(summary_);
  connect(marginalButton_, &QPushButton::clicked, this, [this] { AskForMarginal(); });
  connect(fixButton_, &QPushButton::clicked, this, [this] { AskForFixed(); });
}

void CProbitDlg::Refresh() {
  ForgetOthers(choices_.y, choices_.fixedThresholds);
  ForgetOthers(choices_.y, choices_.marginalThresholds);
  const auto enable = [this](QPushButton* button, const NameList& other, const QString& why) {
    button->setEnabled(!choices_.y.empty() && other.empty());
    button->setToolTip(choices_.y.empty() ? tr("Add ordinal variables first")
                       : other.empty()    ? QString()
                                          : why);
  };
  enable(marginalButton_, choices_.fixedThresholds, tr("Thresholds are fixed already"));
  enable(fixButton_, choices_.marginalThresholds, tr("Marginal thresholds are chosen already"));
  QStringList lines;
  if (!choices_.declareFixed) AddLine(tr("Covariates "), choices_.x, lines);
  AddLine(tr("Fix threshold for "), choices_.fixedThresholds, lines);
  AddLine(tr("Marginal threshold for "), choices_.marginalThresholds, lines);
  summary_->setText(lines.join('\n'));
  summary_->setVisible(!lines.isEmpty());
  CChoicesDlgOf::Refresh();
}

void CProbitDlg::AskForMarginal() {
  CDataMTPRGDlg dialog(Data(), choices_, this);
  if (dialog.exec() != QDialog::Accepted) return;
  choices_.marginalThresholds = dialog.Choices().marginalThresholds;
  Form().TellChange();
}

void CProbitDlg::AskForFixed() {
  CDataFTPRGDlg dialog(Data(), choices_, Folder(), this);
  if (dialog.exec() != QDialog::Accepted) return;
  choices_.fixedThresholds = dialog.Choices().fixedThresholds;
  choices_.thresholdFile = dialog.Choices().thresholdFile;
  Form().TellChange();
}
