#include "dataview/table/TableCursor.h"

#include <algorithm>

void CTableCursor::SetSize(std::int64_t rows, int columns) {
  rows_ = std::max<std::int64_t>(rows, 0);
  columns_ = std::max(columns, 0);
  if (current_.IsValid()) {
    current_ = Inside(current_);
    anchor_ = Inside(anchor_);
  }
}

void CTableCursor::MoveTo(TableCell cell, bool extend, Shape shape) {
  current_ = Inside(cell);
  shape_ = shape;
  if (!extend || !anchor_.IsValid()) anchor_ = current_;
}

void CTableCursor::MoveBy(std::int64_t rows, int columns, bool extend) {
  if (!current_.IsValid()) {
    MoveTo({0, 0});
    return;
  }
  // The distances are cut first: their sums then fit.
  rows = std::clamp(rows, -current_.row, rows_ - 1 - current_.row);
  columns = std::clamp(columns, -current_.column, columns_ - 1 - current_.column);
  const Shape shape = extend ? shape_ : Shape::Cells;
  MoveTo({current_.row + rows, current_.column + columns}, extend, shape);
}

void CTableCursor::SelectAll() {
  if (!current_.IsValid()) current_ = anchor_ = Inside({0, 0});
  shape_ = Shape::All;
}

TableRange CTableCursor::Selected() const {
  if (!current_.IsValid()) return {};
  TableRange range{std::min(anchor_.row, current_.row), std::max(anchor_.row, current_.row) + 1,
                   std::min(anchor_.column, current_.column),
                   std::max(anchor_.column, current_.column) + 1};
  if (shape_ == Shape::Columns || shape_ == Shape::All) {
    range.rowBegin = 0;
    range.rowEnd = rows_;
  }
  if (shape_ == Shape::Rows || shape_ == Shape::All) {
    range.columnBegin = 0;
    range.columnEnd = columns_;
  }
  return range;
}

bool CTableCursor::IsSelected(std::int64_t row, int column) const {
  return IsRowTouched(row) && IsColumnTouched(column);
}

bool CTableCursor::IsRowTouched(std::int64_t row) const {
  const TableRange range = Selected();
  return row >= range.rowBegin && row < range.rowEnd;
}

bool CTableCursor::IsColumnTouched(int column) const {
  const TableRange range = Selected();
  return column >= range.columnBegin && column < range.columnEnd;
}

TableCell CTableCursor::Inside(TableCell cell) const {
  if (rows_ == 0 || columns_ == 0) return {};
  return {std::clamp<std::int64_t>(cell.row, 0, rows_ - 1),
          std::clamp(cell.column, 0, columns_ - 1)};
}
