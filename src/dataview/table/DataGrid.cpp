#include "dataview/table/DataGrid.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>

#include "dataview/table/CellEditor.h"
#include "dataview/table/CellPainter.h"
#include "dataview/table/TableHeading.h"

CDataGrid::CDataGrid(QWidget* parent)
    : QTableView(parent), model_(new CDataTableModel(this)), editor_(new CCellEditor(viewport())) {
  setModel(model_);
  setItemDelegate(new CCellPainter(cursor_, *model_, this));
  BuildHeadings();
  setFrameShape(QFrame::NoFrame);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setHorizontalScrollMode(ScrollPerPixel);
  setSelectionMode(NoSelection);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setShowGrid(false);  // the cell painter draws it, in colours that suit dark grounds too
  setWordWrap(false);
  setCornerButtonEnabled(false);
  connect(editor_, &CCellEditor::Left, this, &CDataGrid::LeaveEditor);
  connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, &CDataGrid::PlaceEditor);
  connect(horizontalHeader(), &QHeaderView::sectionResized, this, &CDataGrid::PlaceEditor);
  connect(horizontalHeader(), &QHeaderView::sectionHandleDoubleClicked, this,
          [this](int column) { resizeColumnToContents(column); });
  dragTimer_.setInterval(40);
  connect(&dragTimer_, &QTimer::timeout, this, &CDataGrid::ScrollWhileDragging);
}

void CDataGrid::BuildHeadings() {
  auto* top = new CTableHeading(Qt::Horizontal, cursor_, *model_, this);
  auto* side = new CTableHeading(Qt::Vertical, cursor_, *model_, this);
  setHorizontalHeader(top);
  setVerticalHeader(side);
  side->setSectionResizeMode(QHeaderView::Fixed);

  const auto chooseColumn = [this](int column, bool extend) {
    MoveTo({rows_.First(), column}, extend, CTableCursor::Shape::Columns);
  };
  const auto chooseRow = [this](int row, bool extend) {
    MoveTo({rows_.First() + row, std::max(cursor_.Current().column, 0)}, extend,
           CTableCursor::Shape::Rows);
  };
  connect(top, &QHeaderView::sectionPressed, this, [chooseColumn](int column) {
    chooseColumn(column, QGuiApplication::keyboardModifiers() & Qt::ShiftModifier);
  });
  connect(top, &QHeaderView::sectionEntered, this,
          [chooseColumn](int column) { chooseColumn(column, true); });
  connect(side, &QHeaderView::sectionPressed, this, [chooseRow](int row) {
    chooseRow(row, QGuiApplication::keyboardModifiers() & Qt::ShiftModifier);
  });
  connect(side, &QHeaderView::sectionEntered, this, [chooseRow](int row) { chooseRow(row, true); });
}

void CDataGrid::SetSize(std::int64_t rows, int columns) {
  rows_.SetTotal(rows);
  cursor_.SetSize(rows, columns);
  UpdateWindow();
}

void CDataGrid::UpdateWindow() {
  const int height = std::max(verticalHeader()->defaultSectionSize(), 1);
  rows_.SetVisible(viewport()->height() / height);
  model_->SetWindow(rows_.First(), rows_.Drawn());
  PlaceEditor();
  viewport()->update();
  verticalHeader()->viewport()->update();
  emit WindowMoved();
}

void CDataGrid::SetFirstRow(std::int64_t row) {
  rows_.SetFirst(row);
  UpdateWindow();
}

void CDataGrid::ScrollRows(std::int64_t rows) {
  rows_.ScrollBy(rows);
  UpdateWindow();
}

void CDataGrid::RevealRow(std::int64_t row) {
  rows_.Reveal(row);
  UpdateWindow();
}

void CDataGrid::RevealColumn(int column) {
  if (column < 0 || column >= model_->columnCount()) return;
  const int left = columnViewportPosition(column);
  const int right = left + columnWidth(column);
  QScrollBar* bar = horizontalScrollBar();
  if (left < 0 || columnWidth(column) > viewport()->width()) {
    bar->setValue(bar->value() + left);
  } else if (right > viewport()->width()) {
    bar->setValue(bar->value() + right - viewport()->width());
  }
}

void CDataGrid::MoveTo(const TableCell& cell, bool extend, CTableCursor::Shape shape) {
  EndEdit();
  cursor_.MoveTo(cell, extend, shape);
  CursorChanged();
}

void CDataGrid::MoveBy(std::int64_t rows, int columns, bool extend) {
  cursor_.MoveBy(rows, columns, extend);
  CursorChanged();
}

void CDataGrid::SelectAll() {
  EndEdit();
  cursor_.SelectAll();
  viewport()->update();
  horizontalHeader()->viewport()->update();
  verticalHeader()->viewport()->update();
  emit CursorMoved();
}

void CDataGrid::CursorChanged() {
  const TableCell cell = cursor_.Current();
  if (cell.IsValid()) {
    rows_.Reveal(cell.row);
    RevealColumn(cell.column);
  }
  UpdateWindow();
  horizontalHeader()->viewport()->update();
  if (cell.IsValid()) {
    // Qt's own current index is kept for screen readers.
    selectionModel()->setCurrentIndex(
        model_->index(static_cast<int>(cell.row - rows_.First()), cell.column),
        QItemSelectionModel::NoUpdate);
  }
  emit CursorMoved();
}

void CDataGrid::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  UpdateWindow();
}

// Qt asks for its current index, whose row means little here; columns are revealed by
// CursorChanged().
void CDataGrid::scrollTo(const QModelIndex&, ScrollHint) {}

TableArea CDataGrid::AreaAt(const QPoint& point, TableCell& cell) const {
  const QPoint inside = viewport()->mapFrom(this, point);
  const int column = columnAt(inside.x());
  const int row = rowAt(inside.y());
  cell = {row < 0 ? -1 : rows_.First() + row, column};
  const QRect all = rect();
  if (!all.contains(point)) return TableArea::None;
  if (inside.y() < 0)
    return column < 0 || inside.x() < 0 ? TableArea::None : TableArea::ColumnHeading;
  if (inside.x() < 0) return row < 0 ? TableArea::None : TableArea::RowHeading;
  return cell.IsValid() ? TableArea::Cell : TableArea::None;
}
