#include "dataview/operations/PrintPages.h"

#include <algorithm>

CPrintPages::CPrintPages(const PrintSheet& sheet) : cases_(sheet.cases) {
  // One row of the page is that of the headings; a page holds one case at least.
  const double rows = sheet.rowHeight > 0 ? sheet.pageHeight / sheet.rowHeight - 1 : 1;
  rowsPerPage_ = std::max<std::int64_t>(static_cast<std::int64_t>(rows), 1);
  const std::int64_t cases = std::max<std::int64_t>(cases_.end - cases_.begin, 0);
  caseBlocks_ = (cases + rowsPerPage_ - 1) / rowsPerPage_;

  const double room = sheet.pageWidth - sheet.rowHeadingWidth;
  double used = 0;
  for (std::size_t i = 0; i < sheet.columnWidths.size(); ++i) {
    const double width = sheet.columnWidths[i];
    // A column that is wider than a page has one for itself.
    if (columns_.empty() || used + width > room) {
      columns_.push_back({static_cast<int>(i), static_cast<int>(i)});
      used = 0;
    }
    columns_.back().end = static_cast<int>(i) + 1;
    used += width;
  }
}

PrintPage CPrintPages::Page(std::int64_t page) const {
  const auto across = static_cast<std::int64_t>(columns_.size());
  const Columns& columns = columns_[static_cast<std::size_t>(page % across)];
  const std::int64_t begin = cases_.begin + page / across * rowsPerPage_;
  return {{begin, std::min(begin + rowsPerPage_, cases_.end)}, columns.begin, columns.end};
}
