// The current cell and the selected range of a grid, on absolute rows.
#pragma once

#include <cstdint>

#include "host/DataTable.h"

// A range of cells, half-open in both directions.
struct TableRange {
  std::int64_t rowBegin = 0;
  std::int64_t rowEnd = 0;
  int columnBegin = 0;
  int columnEnd = 0;
  bool IsEmpty() const { return rowBegin >= rowEnd || columnBegin >= columnEnd; }
};

class CTableCursor {
 public:
  enum class Shape { Cells, Rows, Columns, All };

  // Cells that are no longer there are given up for the nearest ones; in a table without cells
  // there is none.
  void SetSize(std::int64_t rows, int columns);

  // Makes `cell` (moved into the table) the current one. With `extend` the range keeps its other
  // corner, else it shrinks to the cell; Rows and Columns widen it to whole rows and columns.
  void MoveTo(TableCell cell, bool extend = false, Shape shape = Shape::Cells);
  void MoveBy(std::int64_t rows, int columns, bool extend);
  void SelectAll();

  const TableCell& Current() const { return current_; }
  Shape SelectedShape() const { return shape_; }
  TableRange Selected() const;
  bool IsSelected(std::int64_t row, int column) const;
  bool IsRowTouched(std::int64_t row) const;
  bool IsColumnTouched(int column) const;

 private:
  TableCell Inside(TableCell cell) const;

  std::int64_t rows_ = 0;
  int columns_ = 0;
  Shape shape_ = Shape::Cells;
  TableCell current_;
  TableCell anchor_;
};
