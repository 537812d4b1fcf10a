#include "engine/report/Table.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::size_t kMargin = 2;
constexpr std::size_t kGap = 2;

class CTableWriter {
 public:
  CTableWriter(const TABLE& table, int pageColumns, CString& out)
      : table_(table), page_(static_cast<std::size_t>(pageColumns)), out_(out) {
    for (const TABLECOLUMN& column : table.columns) {
      widths_.push_back(
          std::max(TextColumns(column.heading), column.left ? std::size_t{0} : table.narrowest));
    }
    for (const auto& row : table.rows) {
      for (std::size_t j = 0; j < row.size(); ++j) {
        widths_[j] = std::max(widths_[j], TextColumns(row[j]));
      }
    }
  }

  void Write() {
    const std::size_t count = table_.columns.size();
    std::size_t first = std::min(table_.repeated, count);
    do {
      const std::size_t end = GroupEnd(first);
      if (first > table_.repeated) out_ += '\n';
      WriteGroup(first, end);
      first = end;
    } while (first < count);
  }

 private:
  // How many of the columns from `first` on fit beside the repeated ones; at least one.
  std::size_t GroupEnd(std::size_t first) const {
    std::size_t used = kMargin;
    for (std::size_t j = 0; j < std::min(table_.repeated, widths_.size()); ++j) {
      used += widths_[j] + kGap;
    }
    std::size_t end = first;
    while (end < widths_.size() && (end == first || used + widths_[end] <= page_)) {
      used += widths_[end++] + kGap;
    }
    return end;
  }

  void WriteGroup(std::size_t first, std::size_t end) {
    std::vector<std::size_t> columns;
    for (std::size_t j = 0; j < std::min(table_.repeated, widths_.size()); ++j)
      columns.push_back(j);
    for (std::size_t j = first; j < end; ++j) columns.push_back(j);
    std::vector<CString> headings;
    bool any = false;
    for (const TABLECOLUMN& column : table_.columns) {
      headings.push_back(column.heading);
      any = any || !column.heading.empty();
    }
    if (any) WriteRow(headings, columns);
    for (const auto& row : table_.rows) WriteRow(row, columns);
  }

  void WriteRow(const std::vector<CString>& row, const std::vector<std::size_t>& columns) {
    CString line(kMargin, ' ');
    for (const std::size_t j : columns) {
      const CString text = j < row.size() ? row[j] : CString();
      const CString filler(widths_[j] - TextColumns(text), ' ');
      if (line.size() > kMargin) line.append(kGap, ' ');
      line += table_.columns[j].left ? text + filler : filler + text;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out_ += line + '\n';
  }

  const TABLE& table_;
  std::size_t page_;
  CString& out_;
  std::vector<std::size_t> widths_;
};

}  // namespace

std::size_t TextColumns(const CString& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  }));
}

void AppendTable(const TABLE& table, int pageColumns, CString& out) {
  CTableWriter(table, pageColumns, out).Write();
}
