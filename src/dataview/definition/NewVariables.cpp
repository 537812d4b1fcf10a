#include "dataview/definition/NewVariables.h"

#include <algorithm>
#include <charconv>

#include "host/Text.h"

namespace {

constexpr const char* kNotCorrect = "The entry of variable names is not correct!";
constexpr const char* kNotRising =
    "The two variables should have the same name and the second variable should have higher index!";

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// "var12" as "var" and 12.
struct NumberedName {
  std::string_view stem;
  std::int64_t index = 0;
};

std::optional<NumberedName> SplitName(std::string_view part) {
  part = Trimmed(part);
  std::size_t stem = part.size();
  while (stem > 0 && IsDigit(part[stem - 1])) --stem;
  if (stem == part.size()) return std::nullopt;
  NumberedName name{part.substr(0, stem), 0};
  const auto read = std::from_chars(part.data() + stem, part.data() + part.size(), name.index);
  if (read.ec != std::errc()) return std::nullopt;  // an index that nobody can count to
  return name;
}

std::optional<NewVariables> ParseRange(std::string_view from, std::string_view to,
                                       CString& problem) {
  const std::optional<NumberedName> first = SplitName(from);
  const std::optional<NumberedName> last = SplitName(to);
  if (!first || !last) {
    problem = kNotCorrect;
    return std::nullopt;
  }
  if (!EqualIgnoringCase(first->stem, last->stem) || last->index <= first->index) {
    problem = kNotRising;
    return std::nullopt;
  }
  if (last->index > INT32_MAX) {
    problem = kNotCorrect;
    return std::nullopt;
  }
  return NewVariables{CString(first->stem), static_cast<std::int32_t>(first->index),
                      static_cast<std::int32_t>(last->index)};
}

}  // namespace

std::optional<NewVariables> ParseNewVariables(std::string_view text, std::int32_t present,
                                              CString& problem) {
  const std::size_t dash = text.find('-');
  std::optional<NewVariables> added = NewVariables{CString(text), -1, -1};
  if (dash != std::string_view::npos) {
    added = ParseRange(text.substr(0, dash), text.substr(dash + 1), problem);
  }
  if (!added) return std::nullopt;
  const std::int64_t count =
      added->first < 0 ? 1 : std::int64_t{added->last} - std::int64_t{added->first} + 1;
  if (present + count > kMostNewIndex) {
    problem = "A data set can have " + std::to_string(kMostNewIndex) +
              " variables at most. It has " + std::to_string(present) + " now.";
    return std::nullopt;
  }
  return added;
}

void AppendVariables(const NewVariables& added, TORVIKSTRUCT& copy, std::int32_t& capacity) {
  const auto firstNew = static_cast<std::size_t>(copy.variables);
  const std::int32_t needed = copy.variables + added.Count();
  while (capacity < needed) capacity += 8;
  copy.ResizeArrays(std::max(copy.variable.size(), static_cast<std::size_t>(capacity)));
  for (std::int32_t round = 0; round < added.Count(); ++round) {
    CString name = added.stem;
    if (added.first >= 0) name += std::to_string(added.first + round);
    RenameVariable(copy, copy.variables++, name);
    copy.variable[firstNew].missing = kNoMissing;
  }
}

void RenameVariable(TORVIKSTRUCT& copy, std::int32_t variable, std::string_view name) {
  copy.variable[static_cast<std::size_t>(variable)].name = CutText(name, kNameBytes);
}
