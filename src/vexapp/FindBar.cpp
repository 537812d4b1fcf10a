#include "vexapp/FindBar.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

namespace {

QToolButton* MakeButton(QWidget* parent, const char* name, const QString& text,
                        const QString& tip) {
  auto* const button = new QToolButton(parent);
  button->setObjectName(name);
  button->setText(text);
  button->setToolTip(tip);
  return button;
}

}  // namespace

CFindBar::CFindBar(QWidget* parent)
    : QWidget(parent),
      text_(new QLineEdit(this)),
      replacement_(new QLineEdit(this)),
      matchCase_(new QCheckBox(tr("Match &case"), this)),
      result_(new QLabel(this)),
      replaceRow_(new QWidget(this)) {
  setObjectName("findBar");
  text_->setObjectName("findEdit");
  text_->setPlaceholderText(tr("Find"));
  text_->setClearButtonEnabled(true);
  replacement_->setObjectName("replaceEdit");
  replacement_->setPlaceholderText(tr("Replace with"));
  matchCase_->setObjectName("matchCaseCheck");
  result_->setObjectName("findResult");
  auto* const previous = MakeButton(this, "previousButton", tr("Previous"), tr("Shift+F3"));
  auto* const next = MakeButton(this, "nextButton", tr("Next"), tr("F3"));
  auto* const close = MakeButton(this, "closeFindButton", QString(QChar(0x00d7)), tr("Esc"));
  close->setAutoRaise(true);
  close->setAccessibleName(tr("Close"));
  auto* const replace = MakeButton(this, "replaceButton", tr("Replace"), {});
  auto* const replaceAll = MakeButton(this, "replaceAllButton", tr("Replace All"), {});

  auto* const replaceLayout = new QHBoxLayout(replaceRow_);
  replaceLayout->setContentsMargins(0, 0, 0, 0);
  replaceLayout->addWidget(replace);
  replaceLayout->addWidget(replaceAll);
  replaceLayout->addStretch(1);
  auto* const grid = new QGridLayout(this);
  grid->setContentsMargins(8, 5, 8, 5);
  grid->setVerticalSpacing(4);
  grid->addWidget(text_, 0, 0);
  grid->addWidget(previous, 0, 1);
  grid->addWidget(next, 0, 2);
  grid->addWidget(matchCase_, 0, 3);
  grid->addWidget(result_, 0, 4);
  grid->addWidget(close, 0, 5);
  grid->addWidget(replacement_, 1, 0);
  grid->addWidget(replaceRow_, 1, 1, 1, 4);
  grid->setColumnStretch(0, 2);
  grid->setColumnStretch(4, 3);
  text_->setMinimumWidth(160);

  connect(next, &QToolButton::clicked, this, [this] { emit FindAsked(true); });
  connect(previous, &QToolButton::clicked, this, [this] { emit FindAsked(false); });
  connect(replace, &QToolButton::clicked, this, &CFindBar::ReplaceAsked);
  connect(replaceAll, &QToolButton::clicked, this, &CFindBar::ReplaceAllAsked);
  connect(close, &QToolButton::clicked, this, &CFindBar::Closed);
  hide();
}

void CFindBar::Open(const QString& text, bool withReplace) {
  if (!text.isEmpty()) text_->setText(text);
  replacement_->setVisible(withReplace);
  replaceRow_->setVisible(withReplace);
  ShowResult({}, false);
  show();
  text_->setFocus();
  text_->selectAll();
}

QString CFindBar::Text() const {
  return text_->text();
}
QString CFindBar::Replacement() const {
  return replacement_->text();
}
bool CFindBar::MatchCase() const {
  return matchCase_->isChecked();
}

void CFindBar::ShowResult(const QString& result, bool failed) {
  result_->setText(result);
  QPalette shown = palette();
  if (failed) shown.setColor(QPalette::WindowText, palette().color(QPalette::Link));
  result_->setPalette(shown);
}

void CFindBar::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    emit Closed();
  } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    emit FindAsked((event->modifiers() & Qt::ShiftModifier) == 0);
  } else {
    QWidget::keyPressEvent(event);
  }
}
