// Cells as people type and read them, one by one and in blocks.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "host/Types.h"

// The shortest text that reads back as the same value: what a cell editor opens on, whatever the
// grid shows.
CString ExactCellText(double value);

// Reads what ExactCellText writes and any other number; blank text is the missing-data code. Empty
// when it is none of these.
std::optional<double> ParseCellText(std::string_view text);

// A rectangle of cells, half-open, counted from 0.
struct CellRange {
  std::int64_t rowBegin = 0;
  std::int64_t rowEnd = 0;
  int columnBegin = 0;
  int columnEnd = 0;

  bool IsEmpty() const { return rowEnd <= rowBegin || columnEnd <= columnBegin; }
  std::int64_t Rows() const { return rowEnd - rowBegin; }
  int Columns() const { return columnEnd - columnBegin; }
  std::int64_t Cells() const { return IsEmpty() ? 0 : Rows() * Columns(); }
};

// A block of values as the clipboard carries it: rows of equal length.
struct CellBlock {
  std::int64_t rows = 0;
  int columns = 0;
  std::vector<double> values;      // rows * columns, row after row
  std::int64_t ignoredFields = 0;  // were no numbers; the missing-data code stands for them
};

// One row as text: tabs between the values, a line end behind the last.
void AppendRowText(const double* values, std::size_t count, CString& text);

// Reads rows of tab-separated values, at most so many rows and columns of them. Lines may end with
// LF, CR LF or CR; a line end behind the last row makes no further row; short rows are filled with
// the missing-data code. Empty where that filling would take far more memory than the text does.
std::optional<CellBlock> ParseBlockText(std::string_view text, std::int64_t mostRows,
                                        int mostColumns);
