// Keys, wheel and mouse of the grid.
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <limits>

#include "dataview/table/DataGrid.h"

namespace {

constexpr int kWheelStep = 120;  // eighths of a degree
constexpr int kRowsPerWheelStep = 3;
constexpr std::int64_t kAllRows = std::numeric_limits<std::int32_t>::max() * std::int64_t{1 << 20};
constexpr int kAllColumns = std::numeric_limits<int>::max() / 2;

// How far a key moves: in rows and in columns.
struct Step {
  std::int64_t rows = 0;
  int columns = 0;
  bool IsNone() const { return rows == 0 && columns == 0; }
};

Step StepOf(int key, bool control, int page) {
  switch (key) {
    case Qt::Key_Up:
      return {control ? -kAllRows : -1, 0};
    case Qt::Key_Down:
      return {control ? kAllRows : 1, 0};
    case Qt::Key_Left:
      return {0, control ? -kAllColumns : -1};
    case Qt::Key_Right:
      return {0, control ? kAllColumns : 1};
    case Qt::Key_PageUp:
      return {-page, 0};
    case Qt::Key_PageDown:
      return {page, 0};
    case Qt::Key_Home:
      return {control ? -kAllRows : 0, -kAllColumns};
    case Qt::Key_End:
      return {control ? kAllRows : 0, kAllColumns};
    case Qt::Key_Tab:
      return {0, 1};
    case Qt::Key_Backtab:
      return {0, -1};
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return {1, 0};
    default:
      return {};
  }
}

}  // namespace

void CDataGrid::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::SelectAll)) {
    SelectAll();
  } else if (!MoveByKey(event) && !EditByKey(event)) {
    event->ignore();
  }
}

// F2 opens the editor on the value, a character on itself, Backspace on nothing.
bool CDataGrid::EditByKey(QKeyEvent* event) {
  if (!editable_ || !cursor_.Current().IsValid()) return false;
  if (event->key() == Qt::Key_F2) {
    StartEdit();
    return true;
  }
  if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
  const bool erase = event->key() == Qt::Key_Backspace;
  const QString text = erase ? QString() : event->text();
  if (!erase && (text.isEmpty() || !text.at(0).isPrint())) return false;
  StartEditWith(text);
  return true;
}

bool CDataGrid::MoveByKey(QKeyEvent* event) {
  const bool control = event->modifiers() & Qt::ControlModifier;
  const bool tab = event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab;
  if (event->modifiers() & Qt::AltModifier || (tab && control)) return false;
  const Step step = StepOf(event->key(), control, rows_.Visible());
  if (step.IsNone()) return false;
  const bool extend = (event->modifiers() & Qt::ShiftModifier) && !tab;
  // A page moves the window as well, so that the cell keeps its place on the screen.
  const bool page = event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
  if (page && cursor_.Current().IsValid()) rows_.ScrollBy(step.rows);
  MoveBy(step.rows, step.columns, extend);
  return true;
}

void CDataGrid::wheelEvent(QWheelEvent* event) {
  const QPoint turn = event->angleDelta();
  if (event->modifiers() & Qt::ControlModifier) {
    if (turn.y() != 0) emit ZoomAsked(turn.y() > 0 ? 1 : -1);
    return event->accept();
  }
  const bool sideways = event->modifiers() & Qt::ShiftModifier;
  if (turn.y() == 0 || sideways) {
    QScrollBar* bar = horizontalScrollBar();
    const int delta = turn.x() != 0 ? turn.x() : turn.y();
    bar->setValue(bar->value() - delta);
  } else {
    wheelRest_ += turn.y() * kRowsPerWheelStep;
    ScrollRows(-(wheelRest_ / kWheelStep));
    wheelRest_ %= kWheelStep;
  }
  event->accept();
}

TableCell CDataGrid::CellNear(const QPoint& viewportPoint) const {
  const int rowHeight = std::max(verticalHeader()->defaultSectionSize(), 1);
  const int x = std::clamp(viewportPoint.x(), 0, std::max(viewport()->width() - 1, 0));
  int column = columnAt(x);
  if (column < 0) column = model_->columnCount() - 1;  // to the right of the last one
  const int y = viewportPoint.y();
  const int row = y < 0 ? -1 : std::min(y / rowHeight, rows_.Drawn() - 1);
  return {rows_.First() + row, column};
}

void CDataGrid::mousePressEvent(QMouseEvent* event) {
  setFocus(Qt::MouseFocusReason);
  if (event->button() != Qt::LeftButton) return;
  TableCell cell;
  if (AreaAt(viewport()->mapTo(this, event->pos()), cell) != TableArea::Cell) return;
  MoveTo(cell, event->modifiers() & Qt::ShiftModifier);
}

void CDataGrid::mouseMoveEvent(QMouseEvent* event) {
  if (!(event->buttons() & Qt::LeftButton) || !cursor_.Current().IsValid()) return;
  DragTo(event->pos());
}

void CDataGrid::DragTo(const QPoint& point) {
  dragPoint_ = point;
  MoveTo(CellNear(point), true);
  const bool outside = point.y() < 0 || point.y() >= viewport()->height();
  if (outside && !dragTimer_.isActive()) dragTimer_.start();
  if (!outside) dragTimer_.stop();
}

void CDataGrid::ScrollWhileDragging() {
  ScrollRows(dragPoint_.y() < 0 ? -1 : 1);
  DragTo(dragPoint_);
}

void CDataGrid::mouseReleaseEvent(QMouseEvent*) {
  dragTimer_.stop();
}

void CDataGrid::mouseDoubleClickEvent(QMouseEvent* event) {
  TableCell cell;
  const QPoint point = viewport()->mapTo(this, event->pos());
  if (event->button() == Qt::LeftButton && AreaAt(point, cell) == TableArea::Cell) StartEdit();
}
