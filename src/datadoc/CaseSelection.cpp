#include "datadoc/CaseSelection.h"

#include <algorithm>
#include <optional>

#include "host/Numbers.h"
#include "host/Text.h"

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kOperators = "<>=";

// The next word of `rest`, which is shortened by it; empty at the end.
std::string_view NextWord(std::string_view& rest) {
  rest = Trimmed(rest);
  const std::string_view word = rest.substr(0, rest.find_first_of(kBlanks));
  rest.remove_prefix(word.size());
  return word;
}

std::optional<double> WholeNumberText(std::string_view text) {
  const auto number = ParseNumber(text);
  if (!number || number->length != text.size()) return std::nullopt;
  return number->value;
}

CString Found(std::string_view text) {
  return text.empty() ? "the end of the line" : '"' + CString(text) + '"';
}

}  // namespace

bool CCaseSelection::IsSelectionLine(std::string_view line) {
  const std::string_view word = NextWord(line);
  return EqualIgnoringCase(word, "SC") || EqualIgnoringCase(word, "SD");
}

bool CCaseSelection::AddLine(const TORVIKSTRUCT& data, const CVariableNames& names,
                             std::string_view line, CString& problem) {
  std::string_view rest = line;
  Rule rule;
  rule.removes = EqualIgnoringCase(NextWord(rest), "SD");
  rest = Trimmed(rest);
  std::string_view afterWord = rest;
  rule.ofCaseNumber = !rule.removes && EqualIgnoringCase(NextWord(afterWord), "CASE");
  const bool understood = rule.ofCaseNumber ? ReadCaseRule(Trimmed(afterWord), rule, problem)
                                            : ReadValueRule(data, names, rest, rule, problem);
  if (!understood) return false;
  if (rule.removes) {
    dropped_.resize(static_cast<std::size_t>(data.variables), false);
    for (const Variable& variable : rule.variables) {
      dropped_[static_cast<std::size_t>(variable.index)] = true;
    }
  }
  rules_.push_back(std::move(rule));
  return true;
}

bool CCaseSelection::ReadCaseRule(std::string_view text, Rule& rule, CString& problem) {
  if (EqualIgnoringCase(text, "ODD") || EqualIgnoringCase(text, "EVEN")) {
    rule.condition = EqualIgnoringCase(text, "ODD") ? Condition::Odd : Condition::Even;
    return true;
  }
  if (text.starts_with('<') || text.starts_with('>')) {
    rule.condition = text.front() == '<' ? Condition::Below : Condition::Above;
    if (const auto value = WholeNumberText(Trimmed(text.substr(1)))) {
      rule.value = *value;
      return true;
    }
  }
  problem = "expected ODD, EVEN, < number or > number after CASE, found " + Found(text);
  return false;
}

bool CCaseSelection::ReadValueRule(const TORVIKSTRUCT& data, const CVariableNames& names,
                                   std::string_view text, Rule& rule, CString& problem) {
  const std::size_t at = text.find_last_of(kOperators);
  if (at == std::string_view::npos) {
    problem = "expected <, > or = and a number after the variables, found the end of the line";
    return false;
  }
  const std::string_view valueText = Trimmed(text.substr(at + 1));
  const auto value = WholeNumberText(valueText);
  if (!value) {
    problem = "expected a number after " + CString(1, text[at]) + ", found " + Found(valueText);
    return false;
  }
  rule.value = *value;
  rule.condition = text[at] == '<'   ? Condition::Below
                   : text[at] == '>' ? Condition::Above
                                     : Condition::Equal;
  std::vector<bool> named(static_cast<std::size_t>(data.variables), false);
  std::string_view list = Trimmed(text.substr(0, at));
  for (std::string_view word = NextWord(list); !word.empty(); word = NextWord(list)) {
    const auto range = names.FindRange(word);
    if (!range || range->last >= data.variables) {
      problem = "expected variables of the data file, found " + Found(word);
      return false;
    }
    for (std::int32_t i = range->first; i <= range->last; ++i) {
      if (named[static_cast<std::size_t>(i)]) continue;
      named[static_cast<std::size_t>(i)] = true;
      rule.variables.push_back({i, CMissingTest(data, static_cast<std::size_t>(i))});
    }
  }
  if (rule.variables.empty()) {
    problem = "expected variables before " + CString(1, text[at]) + ", found none";
    return false;
  }
  return true;
}

bool CCaseSelection::Holds(const Rule& rule, const double* row, std::int64_t caseNumber) {
  switch (rule.condition) {
    case Condition::Odd:
      return caseNumber % 2 != 0;
    case Condition::Even:
      return caseNumber % 2 == 0;
    default:
      break;
  }
  const auto holdsOn = [&rule](double value) {
    if (rule.condition == Condition::Below) return value < rule.value;
    if (rule.condition == Condition::Above) return value > rule.value;
    return value == rule.value;
  };
  if (rule.ofCaseNumber) return holdsOn(static_cast<double>(caseNumber));
  return std::all_of(rule.variables.begin(), rule.variables.end(), [&](const Variable& variable) {
    const double value = row[variable.index];
    return holdsOn(value) && (rule.condition == Condition::Equal || !variable.missing(value));
  });
}

bool CCaseSelection::Keeps(const double* row, std::int64_t caseNumber) const {
  return std::all_of(rules_.begin(), rules_.end(), [&](const Rule& rule) {
    return Holds(rule, row, caseNumber) != rule.removes;
  });
}

std::vector<std::int32_t> CCaseSelection::DroppedVariables() const {
  std::vector<std::int32_t> numbers;
  for (std::size_t i = 0; i < dropped_.size(); ++i) {
    if (dropped_[i]) numbers.push_back(static_cast<std::int32_t>(i) + 1);
  }
  return numbers;
}

bool CCaseSelection::Drops(std::int32_t variable) const {
  return static_cast<std::size_t>(variable) < dropped_.size() &&
         dropped_[static_cast<std::size_t>(variable)];
}

bool CCaseSelection::DropsAllVariables() const {
  return !dropped_.empty() && std::find(dropped_.begin(), dropped_.end(), false) == dropped_.end();
}
