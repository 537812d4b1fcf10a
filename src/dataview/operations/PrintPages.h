// How a grid falls into printed pages. Lengths are in whatever unit the caller measures in.
#pragma once

#include <cstdint>
#include <vector>

#include "datadoc/Selections.h"

// Printing at least so many cases is asked about first.
inline constexpr std::int64_t kManyPrintedCases = 1'000'000;

struct PrintSheet {
  double pageWidth = 0;  // what can be printed on, without the page header
  double pageHeight = 0;
  double rowHeight = 1;  // of a case, and of the column headings
  double rowHeadingWidth = 0;
  std::vector<double> columnWidths;
  CaseRange cases;
};

// A part of the grid that fits on a page: cases and columns, half-open.
struct PrintPage {
  CaseRange cases;
  int columnBegin = 0;
  int columnEnd = 0;
};

// The pages of a sheet, without keeping them: all columns of some cases come before the next cases.
class CPrintPages {
 public:
  explicit CPrintPages(const PrintSheet& sheet);

  std::int64_t Count() const { return caseBlocks_ * static_cast<std::int64_t>(columns_.size()); }
  // Counted from 0.
  PrintPage Page(std::int64_t page) const;

 private:
  struct Columns {
    int begin = 0;
    int end = 0;
  };

  CaseRange cases_;
  std::int64_t rowsPerPage_ = 1;
  std::int64_t caseBlocks_ = 0;
  std::vector<Columns> columns_;  // those that stand beside each other
};
