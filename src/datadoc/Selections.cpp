#include "datadoc/Selections.h"

#include <algorithm>
#include <charconv>

#include "host/Text.h"

namespace {

template <typename Integer>
std::optional<Integer> WholeNumber(std::string_view text) {
  Integer number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<std::int32_t> FindVariable(const TORVIKSTRUCT& data, std::string_view name) {
  const auto end = data.variable.begin() + data.variables;
  const auto found = std::find_if(data.variable.begin(), end, [&](const VARSTRUCT& variable) {
    return Trimmed(TextForDisplay(variable.name)) == name;
  });
  if (found != end) return static_cast<std::int32_t>(found - data.variable.begin());
  const auto number = WholeNumber<std::int32_t>(name);
  if (number && IsVariableNumber(data, *number)) return *number - 1;
  return std::nullopt;
}

// A name may hold a hyphen itself, so every one of them is tried as the middle of a range.
bool AppendRange(const TORVIKSTRUCT& data, std::string_view entry,
                 std::vector<std::int32_t>& variables) {
  for (std::size_t hyphen = entry.find('-'); hyphen != std::string_view::npos;
       hyphen = entry.find('-', hyphen + 1)) {
    const auto first = FindVariable(data, Trimmed(entry.substr(0, hyphen)));
    const auto last = FindVariable(data, Trimmed(entry.substr(hyphen + 1)));
    if (!first || !last || *last < *first) continue;
    for (std::int32_t variable = *first; variable <= *last; ++variable) {
      variables.push_back(variable);
    }
    return true;
  }
  return false;
}

}  // namespace

std::optional<std::vector<std::int32_t>> ParseVariableList(const TORVIKSTRUCT& data,
                                                           std::string_view list,
                                                           CString& problem) {
  std::vector<std::int32_t> variables;
  while (!list.empty()) {
    const std::size_t comma = std::min(list.find(','), list.size());
    const std::string_view entry = Trimmed(list.substr(0, comma));
    list.remove_prefix(std::min(comma + 1, list.size()));
    if (const auto variable = FindVariable(data, entry)) {
      variables.push_back(*variable);
    } else if (!AppendRange(data, entry, variables)) {
      problem = entry;
      return std::nullopt;
    }
  }
  return variables;
}

std::optional<CaseRange> ParseCaseRange(std::string_view text, std::int64_t records) {
  const std::size_t hyphen = text.find('-');
  const auto first = WholeNumber<std::int64_t>(Trimmed(text.substr(0, hyphen)));
  if (!first || *first < 1) return std::nullopt;
  std::int64_t last = *first;
  if (hyphen != std::string_view::npos) {
    const std::string_view end = Trimmed(text.substr(hyphen + 1));
    const auto number = end.empty() ? records : WholeNumber<std::int64_t>(end);
    if (!number || (!end.empty() && *number < *first)) return std::nullopt;
    last = *number;
  }
  const CaseRange range{std::min(*first - 1, records), std::min(last, records)};
  return range.end < range.begin ? CaseRange{range.begin, range.begin} : range;
}
