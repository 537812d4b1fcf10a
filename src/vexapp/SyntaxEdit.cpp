#include "vexapp/SyntaxEdit.h"

#include <QFontDatabase>
#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include "resources/Palettes.h"
#include "vexapp/SyntaxHighlighter.h"

// The strip at the left.
class CLineNumbers final : public QWidget {
 public:
  explicit CLineNumbers(CSyntaxEdit& edit) : QWidget(&edit), edit_(edit) {
    setObjectName("lineNumbers");
  }

 protected:
  void paintEvent(QPaintEvent* event) override { edit_.PaintNumbers(event); }

 private:
  CSyntaxEdit& edit_;
};

CSyntaxEdit::CSyntaxEdit(QWidget* parent)
    : QPlainTextEdit(parent),
      numbers_(new CLineNumbers(*this)),
      highlighter_(new CSyntaxHighlighter(document())) {
  setObjectName("syntaxEdit");
  setFrameShape(QFrame::NoFrame);
  setLineWrapMode(QPlainTextEdit::NoWrap);
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  highlighter_->SetDark(IsDark(palette()));
  connect(this, &QPlainTextEdit::blockCountChanged, this, &CSyntaxEdit::Arrange);
  connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
    dy != 0 ? numbers_->scroll(0, dy)
            : numbers_->update(0, rect.y(), numbers_->width(), rect.height());
  });
  connect(this, &QPlainTextEdit::cursorPositionChanged, this, &CSyntaxEdit::ShowMarks);
  connect(document(), &QTextDocument::contentsChange, this, [this](int, int removed, int added) {
    // Formats are contents too, but add and remove as many characters.
    if (marked_ != 0 && removed != added) MarkLine(0, {});
  });
  Arrange();
}

void CSyntaxEdit::SetPointSize(qreal points) {
  QFont sized = font();
  sized.setPointSizeF(points);
  setFont(sized);
  setTabStopDistance(QFontMetricsF(sized).horizontalAdvance(' ') * 8);
  Arrange();
}

int CSyntaxEdit::NumbersWidth() const {
  constexpr int kPadding = 20;
  const int digits = static_cast<int>(QString::number(std::max(1, blockCount())).size());
  return kPadding + fontMetrics().horizontalAdvance('9') * std::max(digits, 2);
}

void CSyntaxEdit::Arrange() {
  setViewportMargins(NumbersWidth(), 0, 0, 0);
  const QRect inside = contentsRect();
  numbers_->setGeometry(inside.left(), inside.top(), NumbersWidth(), inside.height());
  numbers_->update();
}

void CSyntaxEdit::resizeEvent(QResizeEvent* event) {
  QPlainTextEdit::resizeEvent(event);
  Arrange();
}

void CSyntaxEdit::changeEvent(QEvent* event) {
  QPlainTextEdit::changeEvent(event);
  if (event->type() != QEvent::PaletteChange || highlighter_ == nullptr) return;
  highlighter_->SetDark(IsDark(palette()));
  ShowMarks();
}

QColor CSyntaxEdit::MarkColor() const {
  return IsDark(palette()) ? QColor(0xff6b2a2a) : QColor(0xfffbdcd9);
}

void CSyntaxEdit::PaintNumbers(QPaintEvent* event) {
  QPainter painter(numbers_);
  painter.setFont(font());
  painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
  QTextBlock block = firstVisibleBlock();
  qreal top = blockBoundingGeometry(block).translated(contentOffset()).top();
  while (block.isValid() && top <= event->rect().bottom()) {
    const qreal height = blockBoundingRect(block).height();
    const int line = block.blockNumber() + 1;
    const QRectF row(0, top, numbers_->width(), height);
    if (line == marked_) painter.fillRect(row, MarkColor());
    const bool current = line == textCursor().blockNumber() + 1 || line == marked_;
    painter.setPen(palette().color(current ? QPalette::Text : QPalette::PlaceholderText));
    painter.drawText(row.adjusted(0, 0, -10, 0), Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(line));
    top += height;
    block = block.next();
  }
}

void CSyntaxEdit::MarkLine(int line, const QString& reason) {
  marked_ = line;
  reason_ = reason;
  const QTextBlock block = document()->findBlockByNumber(line - 1);
  if (line > 0 && block.isValid()) {
    setTextCursor(QTextCursor(block));
    centerCursor();
  }
  ShowMarks();
}

void CSyntaxEdit::ScrollToLine(int line) {
  verticalScrollBar()->setValue(line);
}

void CSyntaxEdit::ShowMarks() {
  QList<QTextEdit::ExtraSelection> selections;
  const QTextBlock block = document()->findBlockByNumber(marked_ - 1);
  if (marked_ > 0 && block.isValid()) {
    QTextEdit::ExtraSelection mark;
    mark.format.setBackground(MarkColor());
    mark.format.setProperty(QTextFormat::FullWidthSelection, true);
    mark.cursor = QTextCursor(block);
    selections << mark;
  }
  setExtraSelections(selections);
  numbers_->update();
}

bool CSyntaxEdit::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::ToolTip && marked_ > 0) {
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const bool there = cursorForPosition(help.pos()).blockNumber() + 1 == marked_;
    QToolTip::showText(help.globalPos(), there ? reason_ : QString(), viewport());
    return true;
  }
  return QPlainTextEdit::viewportEvent(event);
}
