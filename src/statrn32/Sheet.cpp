#include "statrn32/Sheet.h"

#include <algorithm>
#include <tuple>

namespace statrn32 {
namespace {

auto PlaceOf(const SHEET_CELL& cell) {
  return std::pair(cell.row, static_cast<std::uint32_t>(cell.column));
}

SHEET_KIND KindOf(DATE_KIND date) {
  switch (date) {
    case DATE_KIND::SerialDate:
      return SHEET_KIND::Date;
    case DATE_KIND::SerialMoment:
      return SHEET_KIND::Moment;
    case DATE_KIND::SerialTime:
      return SHEET_KIND::Time;
    default:
      return SHEET_KIND::Number;
  }
}

}  // namespace

void CSheet::Put(std::uint32_t row, std::uint32_t column, SHEET_KIND kind, CELL value) {
  constexpr std::uint32_t kMostColumns = 1U << 24;
  if (column >= kMostColumns) return;
  const SHEET_CELL cell{row, column, kind, value};
  arranged_ = arranged_ && (cells_.empty() || PlaceOf(cells_.back()) < PlaceOf(cell));
  cells_.push_back(cell);
}

void CSheet::Number(std::uint32_t row, std::uint32_t column, double number, DATE_KIND date) {
  CELL value{};
  value.number = number;
  Put(row, column, KindOf(date), value);
}

void CSheet::Logical(std::uint32_t row, std::uint32_t column, bool value) {
  CELL cell{};
  cell.number = value ? 1 : 0;
  Put(row, column, SHEET_KIND::Logical, cell);
}

std::uint64_t CSheet::AddText(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  if (text.empty()) return 0;
  const std::uint64_t stored = texts_.size();
  texts_.append(text) += '\0';
  return stored;
}

void CSheet::StoredText(std::uint32_t row, std::uint32_t column, std::uint64_t stored) {
  CELL value{};
  value.text = stored;
  if (stored != 0) Put(row, column, SHEET_KIND::Text, value);
}

void CSheet::Text(std::uint32_t row, std::uint32_t column, std::string_view text) {
  StoredText(row, column, AddText(text));
}

void CSheet::Error(std::uint32_t row, std::uint32_t column) {
  Put(row, column, SHEET_KIND::Error, CELL{});
}

void CSheet::Arrange() {
  if (arranged_) return;
  const auto before = [](const auto& a, const auto& b) { return PlaceOf(a) < PlaceOf(b); };
  std::stable_sort(cells_.begin(), cells_.end(), before);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    const bool overwritten = i + 1 < cells_.size() && PlaceOf(cells_[i]) == PlaceOf(cells_[i + 1]);
    if (!overwritten) cells_[kept++] = cells_[i];
  }
  cells_.resize(kept);
  arranged_ = true;
}

std::size_t CSheet::CountRows() const {
  std::size_t rows = 0;
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    if (i == 0 || cells_[i].row != cells_[i - 1].row) ++rows;
  }
  return rows;
}

}  // namespace statrn32
