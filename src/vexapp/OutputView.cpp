#include "vexapp/OutputView.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimerEvent>
#include <algorithm>
#include <cmath>
#include <limits>

#include "host/Text.h"
#include "resources/Palettes.h"

namespace {

constexpr int kMargin = 10;

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<signed char>(c) >= 0; });
}

QString Shown(std::string_view bytes) {
  return QString::fromStdString(TextForDisplay(bytes));
}

// The character after `byte` bytes of a line.
qsizetype ColumnOf(std::string_view line, std::int64_t byte) {
  const std::string_view before = line.substr(0, static_cast<std::size_t>(byte));
  return IsAscii(before) ? static_cast<qsizetype>(byte) : Shown(before).size();
}

// The byte at which the character begins.
std::int64_t ByteOf(std::string_view line, qsizetype column) {
  const auto size = static_cast<std::int64_t>(line.size());
  if (IsAscii(line)) return std::clamp<std::int64_t>(column, 0, size);
  std::int64_t byte = 0;
  while (byte < size && ColumnOf(line, byte) < column) ++byte;
  return byte;
}

bool IsPartOfWord(char c) {
  return c != ' ' && c != '\t';
}

}  // namespace

COutputView::COutputView(QWidget* parent) : QAbstractScrollArea(parent) {
  setObjectName("outputView");
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::StrongFocus);
  viewport()->setCursor(Qt::IBeamCursor);
  viewport()->setBackgroundRole(QPalette::Base);
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  Measure();
}

void COutputView::Measure() {
  const QFontMetricsF metrics(font(), this);
  cell_ = metrics.horizontalAdvance(QString(100, '0')) / 100;
  lineHeight_ = std::max(1, static_cast<int>(std::ceil(metrics.lineSpacing())));
  ascent_ = metrics.ascent();
  SetBars();
  viewport()->update();
}

void COutputView::SetPointSize(qreal points) {
  const std::int64_t first = FirstLine();
  QFont sized = font();
  sized.setPointSizeF(points);
  setFont(sized);
  Measure();
  ScrollTo(first);
}

void COutputView::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  if (event->type() == QEvent::FontChange) Measure();
}

int COutputView::VisibleLines() const {
  return std::max(1, (viewport()->height() - kMargin) / lineHeight_);
}

void COutputView::SetBars() {
  constexpr std::int64_t kMost = std::numeric_limits<int>::max();
  const int page = VisibleLines();
  const std::int64_t last = std::max<std::int64_t>(0, text_.LineCount() - page);
  verticalScrollBar()->setRange(0, static_cast<int>(std::min(last, kMost)));
  verticalScrollBar()->setPageStep(page);
  const qreal width = cell_ * static_cast<qreal>(text_.LongestLine()) + 2 * kMargin;
  const auto most = static_cast<qreal>(kMost);
  horizontalScrollBar()->setRange(
      0, static_cast<int>(std::clamp<qreal>(width - viewport()->width(), 0, most)));
  horizontalScrollBar()->setPageStep(viewport()->width());
  horizontalScrollBar()->setSingleStep(static_cast<int>(cell_ * 4));
}

void COutputView::ShowText(COutputText text, bool keepPlace) {
  const std::int64_t first = keepPlace ? FirstLine() : 0;
  text_ = std::move(text);
  Select({}, {});
  SetBars();
  ScrollTo(first);
  viewport()->update();
}

QString COutputView::LineText(std::int64_t line) const {
  return Shown(text_.Line(line));
}

std::int64_t COutputView::FirstLine() const {
  return verticalScrollBar()->value();
}

void COutputView::ScrollTo(std::int64_t line) {
  verticalScrollBar()->setValue(
      static_cast<int>(std::clamp<std::int64_t>(line, 0, verticalScrollBar()->maximum())));
}

void COutputView::resizeEvent(QResizeEvent*) {
  SetBars();
}

void COutputView::scrollContentsBy(int, int) {
  viewport()->update();
}

QColor COutputView::ColorOf(COutputText::Kind kind) const {
  const bool dark = IsDark(palette());
  switch (kind) {
    case COutputText::Kind::Rule:
      return palette().color(QPalette::PlaceholderText);
    case COutputText::Kind::Heading:
      return palette().color(QPalette::Link);
    case COutputText::Kind::Warning:
      return dark ? QColor(0xffe7b35a) : QColor(0xff8a5a00);
    case COutputText::Kind::Error:
      return dark ? QColor(0xffff8d85) : QColor(0xffb3261e);
    case COutputText::Kind::Plain:
      break;
  }
  return palette().color(QPalette::Text);
}

void COutputView::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  painter.setFont(font());
  const std::int64_t first = FirstLine();
  const std::int64_t begin = first + std::max(0, event->rect().top() - kMargin) / lineHeight_;
  const std::int64_t end =
      std::min(text_.LineCount(), first + event->rect().bottom() / lineHeight_ + 1);
  for (std::int64_t line = begin; line < end; ++line) {
    const auto top = static_cast<qreal>((line - first) * lineHeight_ + kMargin);
    DrawSelection(painter, line, top);
    DrawLine(painter, line, top);
  }
}

void COutputView::DrawSelection(QPainter& painter, std::int64_t line, qreal top) {
  const auto [from, to] = std::minmax(anchor_, end_);
  if (from == to || line < from.line || line > to.line) return;
  const qreal offset = kMargin - horizontalScrollBar()->value();
  const qreal left = line == from.line ? LeftOf(from) : 0;
  // The line end is part of what is selected.
  const qreal right =
      line == to.line
          ? LeftOf(to)
          : LeftOf({line, static_cast<std::int64_t>(text_.Line(line).size())}) + cell_ / 2;
  painter.fillRect(QRectF(left + offset, top, right - left, lineHeight_),
                   palette().color(QPalette::Highlight));
}

void COutputView::DrawLine(QPainter& painter, std::int64_t line, qreal top) {
  const std::string_view bytes = text_.Line(line);
  const COutputText::Kind kind = text_.KindOf(line);
  QFont drawn = font();
  drawn.setBold(kind == COutputText::Kind::Heading);
  painter.setFont(drawn);
  const auto [from, to] = std::minmax(anchor_, end_);
  const qreal offset = kMargin - horizontalScrollBar()->value();
  const auto draw = [&](std::int64_t begin, std::int64_t end, bool selected) {
    if (begin >= end) return;
    painter.setPen(selected ? palette().color(QPalette::HighlightedText) : ColorOf(kind));
    const auto part =
        bytes.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
    painter.drawText(QPointF(offset + LeftOf({line, begin}), top + ascent_), Shown(part));
  };
  // Of a very long line only what can be seen.
  auto size = static_cast<std::int64_t>(bytes.size());
  std::int64_t begin = 0;
  if (IsAscii(bytes)) {
    begin = std::clamp<std::int64_t>(static_cast<std::int64_t>(-offset / cell_) - 1, 0, size);
    size = std::min(size, begin + static_cast<std::int64_t>(viewport()->width() / cell_) + 3);
  }
  const std::int64_t selectedFrom =
      line < from.line || line > to.line ? size : (line == from.line ? from.byte : 0);
  const std::int64_t selectedTo =
      line < from.line || line > to.line ? size : (line == to.line ? to.byte : size);
  draw(begin, std::min(selectedFrom, size), false);
  draw(std::max(begin, selectedFrom), std::min(selectedTo, size), true);
  draw(std::max(begin, selectedTo), size, false);
}

qreal COutputView::LeftOf(const Place& place) const {
  const std::string_view before =
      text_.Line(place.line).substr(0, static_cast<std::size_t>(place.byte));
  if (IsAscii(before)) return cell_ * static_cast<qreal>(before.size());
  return QFontMetricsF(font(), const_cast<COutputView*>(this)).horizontalAdvance(Shown(before));
}

COutputView::Place COutputView::PlaceAt(const QPointF& point) const {
  const auto row = static_cast<std::int64_t>(std::floor((point.y() - kMargin) / lineHeight_));
  const std::int64_t line = std::clamp<std::int64_t>(FirstLine() + row, 0, text_.LineCount() - 1);
  const qreal x = point.x() - kMargin + horizontalScrollBar()->value();
  const auto column = static_cast<qsizetype>(std::max<qreal>(0, std::round(x / cell_)));
  return {line, ByteOf(text_.Line(line), column)};
}

void COutputView::Select(const Place& anchor, const Place& end) {
  anchor_ = anchor;
  end_ = end;
  viewport()->update();
}

void COutputView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const Place place = PlaceAt(event->position());
  const bool extend = (event->modifiers() & Qt::ShiftModifier) != 0;
  Select(extend ? anchor_ : place, place);
  selecting_ = true;
}

void COutputView::mouseMoveEvent(QMouseEvent* event) {
  if (!selecting_) return;
  mouse_ = event->position();
  ExtendTo(mouse_);
  constexpr int kScrollMilliseconds = 40;
  const bool outside = !viewport()->rect().contains(mouse_.toPoint());
  if (outside && scrollTimer_ == 0) scrollTimer_ = startTimer(kScrollMilliseconds);
  if (!outside && scrollTimer_ != 0) killTimer(std::exchange(scrollTimer_, 0));
}

void COutputView::ExtendTo(const QPointF& point) {
  Select(anchor_, PlaceAt(point));
}

void COutputView::timerEvent(QTimerEvent* event) {
  if (event->timerId() != scrollTimer_) return;
  const QRect inside = viewport()->rect();
  const auto lines = [this](qreal beyond) { return static_cast<int>(beyond / lineHeight_) + 1; };
  if (mouse_.y() < inside.top()) ScrollTo(FirstLine() - lines(inside.top() - mouse_.y()));
  if (mouse_.y() > inside.bottom()) ScrollTo(FirstLine() + lines(mouse_.y() - inside.bottom()));
  QScrollBar& across = *horizontalScrollBar();
  if (mouse_.x() < inside.left()) across.setValue(across.value() - across.singleStep());
  if (mouse_.x() > inside.right()) across.setValue(across.value() + across.singleStep());
  ExtendTo(mouse_);
}

void COutputView::mouseReleaseEvent(QMouseEvent*) {
  selecting_ = false;
  if (scrollTimer_ != 0) killTimer(std::exchange(scrollTimer_, 0));
  QClipboard* const clipboard = QApplication::clipboard();
  if (clipboard->supportsSelection() && anchor_ != end_) {
    clipboard->setText(SelectedText(), QClipboard::Selection);
  }
}

void COutputView::mouseDoubleClickEvent(QMouseEvent* event) {
  const Place place = PlaceAt(event->position());
  const std::string_view line = text_.Line(place.line);
  auto begin = static_cast<std::size_t>(place.byte);
  auto end = begin;
  while (begin > 0 && IsPartOfWord(line[begin - 1])) --begin;
  while (end < line.size() && IsPartOfWord(line[end])) ++end;
  Select({place.line, static_cast<std::int64_t>(begin)},
         {place.line, static_cast<std::int64_t>(end)});
}

void COutputView::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  QAction* const copy = menu.addAction(tr("&Copy"), this, &COutputView::Copy);
  copy->setShortcut(QKeySequence::Copy);
  copy->setEnabled(anchor_ != end_);
  menu.addAction(tr("Select &All"), this, &COutputView::SelectAll)
      ->setShortcut(QKeySequence::SelectAll);
  menu.exec(event->globalPos());
}

// These keys are the view's own, whatever command of the menu has them for the data.
bool COutputView::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.matches(QKeySequence::Copy) || key.matches(QKeySequence::SelectAll)) {
      event->accept();
      return true;
    }
  }
  return QAbstractScrollArea::event(event);
}

void COutputView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return Copy();
  if (event->matches(QKeySequence::SelectAll)) return SelectAll();
  if (event->key() == Qt::Key_Home) return verticalScrollBar()->setValue(0);
  if (event->key() == Qt::Key_End) {
    return verticalScrollBar()->setValue(verticalScrollBar()->maximum());
  }
  if (event->key() == Qt::Key_Space) {
    const bool back = (event->modifiers() & Qt::ShiftModifier) != 0;
    return verticalScrollBar()->triggerAction(back ? QAbstractSlider::SliderPageStepSub
                                                   : QAbstractSlider::SliderPageStepAdd);
  }
  QAbstractScrollArea::keyPressEvent(event);
}

QString COutputView::SelectedText() const {
  const auto [from, to] = std::minmax(anchor_, end_);
  if (from == to) return {};
  const std::int64_t begin = text_.OffsetOf(from);
  const std::string_view bytes = std::string_view(text_.Bytes())
                                     .substr(static_cast<std::size_t>(begin),
                                             static_cast<std::size_t>(text_.OffsetOf(to) - begin));
  if (IsAscii(bytes))
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QString text;
  for (std::int64_t line = from.line; line <= to.line; ++line) {
    std::string_view part = text_.Line(line);
    if (line == to.line) part = part.substr(0, static_cast<std::size_t>(to.byte));
    if (line == from.line) part.remove_prefix(static_cast<std::size_t>(from.byte));
    text += Shown(part);
    if (line != to.line) text += '\n';
  }
  return text;
}

void COutputView::Copy() {
  if (anchor_ != end_) QApplication::clipboard()->setText(SelectedText());
}

void COutputView::SelectAll() {
  const std::int64_t last = text_.LineCount() - 1;
  Select({}, {last, static_cast<std::int64_t>(text_.Line(last).size())});
}

COutputView::Found COutputView::Find(const QString& text, bool matchCase, bool forward) {
  const std::string wanted = text.toStdString();
  const auto [from, to] = std::minmax(anchor_, end_);
  const auto size = static_cast<std::int64_t>(text_.Bytes().size());
  const auto search = [&](std::int64_t at) {
    return forward ? text_.Find(wanted, matchCase, at) : text_.FindBefore(wanted, matchCase, at);
  };
  Found found = Found::Yes;
  auto at = search(text_.OffsetOf(forward ? to : from));
  if (!at) {
    found = Found::FromTheOtherEnd;
    at = search(forward ? 0 : size);
  }
  if (!at) return Found::No;
  const Place begin = text_.PlaceOf(*at);
  const Place end{begin.line, begin.byte + static_cast<std::int64_t>(wanted.size())};
  Select(begin, end);
  const std::int64_t first = FirstLine();
  if (begin.line < first || begin.line >= first + VisibleLines()) {
    ScrollTo(begin.line - VisibleLines() / 3);
  }
  QScrollBar& across = *horizontalScrollBar();
  const qreal right = LeftOf(end) + 2 * kMargin - viewport()->width();
  if (right > across.value()) across.setValue(static_cast<int>(right));
  if (LeftOf(begin) < across.value()) across.setValue(static_cast<int>(LeftOf(begin)));
  return found;
}
