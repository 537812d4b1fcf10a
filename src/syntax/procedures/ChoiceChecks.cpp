#include "syntax/procedures/ChoiceChecks.h"

#include <algorithm>
#include <charconv>

#include <boost/format.hpp>

#include "host/Numbers.h"
#include "host/Text.h"

std::int32_t TypeOf(const TORVIKSTRUCT& data, const CString& name) {
  const std::int32_t number = VariableNumber(data, name);
  return IsVariableNumber(data, number) ? data.variable[static_cast<std::size_t>(number) - 1].type
                                        : -1;
}

bool IsOrdinalVariable(const TORVIKSTRUCT& data, const CString& name) {
  return TypeOf(data, name) == kOrdinal;
}

bool IsCensoredVariable(const TORVIKSTRUCT& data, const CString& name) {
  const std::int32_t type = TypeOf(data, name);
  return type == kCensoredAbove || type == kCensoredBelow || type == kCensoredBoth;
}

std::optional<ChoiceProblem> CheckCount(const NameList& names, std::size_t fewest, const char* what,
                                        const char* field) {
  if (names.size() >= fewest) return std::nullopt;
  return ChoiceProblem{CString("Please select ") + what + ".", {}, field};
}

std::optional<ChoiceProblem> CheckKind(const TORVIKSTRUCT& data, const NameList& names,
                                       bool (*isKind)(const TORVIKSTRUCT&, const CString&),
                                       const char* kind, const char* field) {
  for (const CString& name : names) {
    if (isKind(data, name)) continue;
    return ChoiceProblem{boost::str(boost::format("%1% is no %2%. Data > Define Variables sets "
                                                  "the type of a variable.") %
                                    ShownName(name) % kind),
                         {},
                         field};
  }
  return std::nullopt;
}

std::optional<ChoiceProblem> CheckDisjoint(const NameList& a, const NameList& b,
                                           const char* field) {
  for (const CString& name : a) {
    if (std::find(b.begin(), b.end(), name) == b.end()) continue;
    return ChoiceProblem{
        ShownName(name) + " stands in both lists. Please remove it from one of them.", {}, field};
  }
  return std::nullopt;
}

std::optional<ChoiceProblem> CheckWhole(const CString& text, std::int64_t low, std::int64_t high,
                                        const char* what, const char* field) {
  const auto number = WholeNumber(text);
  if (number && *number >= low && *number <= high) return std::nullopt;
  return ChoiceProblem{boost::str(boost::format("Please enter a whole number between %1% and %2% "
                                                "for %3%.") %
                                  low % high % what),
                       {},
                       field};
}

std::optional<ChoiceProblem> CheckFileName(const CString& name, const char* message,
                                           const char* field) {
  if (Trimmed(name).empty()) return ChoiceProblem{message, {}, field};
  if (name.find_first_of("\r\n") == CString::npos) return std::nullopt;
  return ChoiceProblem{"A file name must not hold line ends.", {}, field};
}

std::optional<std::int64_t> WholeNumber(const CString& text) {
  const std::string_view digits = Trimmed(text);
  std::int64_t number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (result.ec != std::errc() || result.ptr != digits.data() + digits.size()) return std::nullopt;
  return number;
}

std::optional<double> RealNumber(const CString& text) {
  const std::string_view digits = Trimmed(text);
  const auto number = ParseNumber(digits);
  if (!number || number->length != digits.size()) return std::nullopt;
  return number->value;
}
