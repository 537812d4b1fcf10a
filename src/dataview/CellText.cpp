#include "dataview/CellText.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "datadoc/DataSet.h"
#include "dataview/DisplayPattern.h"
#include "host/Numbers.h"
#include "host/Text.h"

namespace {

// What FormatByPattern writes for values that are no numbers.
std::optional<double> ParseNonFinite(std::string_view text) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  if (EqualIgnoringCase(text, "nan")) return std::numeric_limits<double>::quiet_NaN();
  if (EqualIgnoringCase(text, "inf")) return kInfinity;
  if (EqualIgnoringCase(text, "-inf")) return -kInfinity;
  return std::nullopt;
}

// The next line of `text`, which is shortened by it and its line end.
std::string_view NextLine(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end);
  if (text.starts_with("\r\n")) text.remove_prefix(1);
  if (!text.empty()) text.remove_prefix(1);
  return line;
}

std::size_t FieldCount(std::string_view line) {
  return static_cast<std::size_t>(std::count(line.begin(), line.end(), '\t')) + 1;
}

// Fills a row with the fields of a line; those beyond the row are left out.
void ReadFields(std::string_view line, std::size_t columns, double* row, CellBlock& block) {
  for (std::size_t column = 0; column < columns; ++column) {
    const std::size_t tab = std::min(line.find('\t'), line.size());
    const auto value = ParseCellText(line.substr(0, tab));
    row[column] = value.value_or(kMissingCode);
    if (!value) ++block.ignoredFields;
    if (tab == line.size()) return;
    line.remove_prefix(tab + 1);
  }
}

}  // namespace

CString ExactCellText(double value) {
  return std::isfinite(value) ? FormatShortest(value) : FormatByPattern(value, {});
}

std::optional<double> ParseCellText(std::string_view text) {
  text = Trimmed(text);
  if (text.empty()) return kMissingCode;
  const auto number = ParseNumber(text);
  if (number && number->length == text.size()) return number->value;
  return ParseNonFinite(text);
}

void AppendRowText(const double* values, std::size_t count, CString& text) {
  for (std::size_t i = 0; i < count; ++i) {
    text += ExactCellText(values[i]);
    text += i + 1 < count ? '\t' : '\n';
  }
}

std::optional<CellBlock> ParseBlockText(std::string_view text, std::int64_t mostRows,
                                        int mostColumns) {
  constexpr std::size_t kSmallBlock = std::size_t{1} << 22;  // values
  CellBlock block;
  std::size_t columns = 0;
  for (std::string_view rest = text; !rest.empty() && block.rows < mostRows; ++block.rows) {
    columns = std::max(columns, FieldCount(NextLine(rest)));
  }
  columns = std::min(columns, static_cast<std::size_t>(std::max(mostColumns, 0)));
  const auto rows = static_cast<std::size_t>(block.rows);
  if (columns > 0 && rows > std::max(kSmallBlock, text.size() + 1) / columns) return std::nullopt;
  block.columns = static_cast<int>(columns);
  block.values.assign(rows * columns, kMissingCode);
  std::string_view rest = text;
  for (std::size_t row = 0; row < rows; ++row) {
    ReadFields(NextLine(rest), columns, block.values.data() + row * columns, block);
  }
  return block;
}
