// What a data set loses on its way into a file of a format.
#include <algorithm>

#include <boost/algorithm/string/join.hpp>

#include "host/statrn32.h"
#include "statrn32/Formats.h"

namespace statrn32 {
namespace {

constexpr std::int32_t kJsonLines = 903;

bool IsText(const VARIABLE& variable) {
  return variable.type == ST_TYPE_STRING;
}

// The first few of the names, and how many there are beyond.
std::string SomeOf(const std::vector<std::string>& names) {
  constexpr std::size_t kShown = 8;
  if (names.size() <= kShown) return boost::algorithm::join(names, ", ");
  const std::vector<std::string> shown(names.begin(), names.begin() + kShown);
  return boost::algorithm::join(shown, ", ") + " and " + std::to_string(names.size() - kShown) +
         " more";
}

template <typename TEST>
void NoteVariables(const DICTIONARY& dictionary, const TEST& test, const std::string& what,
                   std::vector<std::string>* losses) {
  std::vector<std::string> names;
  for (const VARIABLE& variable : dictionary.variables) {
    if (test(variable)) names.push_back(variable.name);
  }
  if (!names.empty()) losses->push_back(what + ": " + SomeOf(names) + ".");
}

void NoteNames(const NAME_RULES& rules, const DICTIONARY& dictionary,
               std::vector<std::string>* losses) {
  std::vector<std::string> names;
  for (const VARIABLE& variable : dictionary.variables) names.push_back(variable.name);
  std::vector<std::string> changes;
  for (const auto& [old, legal] : MakeLegalNames(rules, &names)) {
    changes.push_back(old + " becomes " + legal);
  }
  if (!changes.empty()) losses->push_back("Names change: " + SomeOf(changes) + ".");
}

bool HasLongValueLabel(const LIMITS& limits, const DICTIONARY& dictionary,
                       const VARIABLE& variable) {
  if (variable.labelSet < 0) return false;
  for (const VALUE_LABEL& label :
       dictionary.labelSets[static_cast<std::size_t>(variable.labelSet)]) {
    if (label.label.size() > limits.valueLabelBytes) return true;
  }
  return false;
}

}  // namespace

std::string WhyTooLarge(const LIMITS& limits, const DICTIONARY& dictionary, std::int64_t cases) {
  const auto over = [](std::int64_t count, std::int64_t most, const char* what) {
    return "the data set has " + std::to_string(count) + " " + what +
           "; a file of this type holds at most " + std::to_string(most);
  };
  const auto variables = static_cast<std::int64_t>(dictionary.variables.size());
  if (cases > limits.records) return over(cases, limits.records, "cases");
  if (variables > limits.variables) return over(variables, limits.variables, "variables");
  for (const VARIABLE& variable : dictionary.variables) {
    if (!IsText(variable) || variable.width <= 0) continue;
    const auto bytes = static_cast<std::size_t>(variable.width);
    if (bytes <= limits.textBytes) continue;
    if (limits.textBytes == 0) {
      return "the variable " + variable.name + " holds texts; this file type has only numbers";
    }
    return "the variable " + variable.name + " holds texts of " + std::to_string(bytes) +
           " bytes; this file type has room for " + std::to_string(limits.textBytes);
  }
  return {};
}

std::vector<std::string> LossesOf(const FORMAT& format, const DICTIONARY& dictionary,
                                  std::int64_t cases) {
  std::vector<std::string> losses;
  if (format.limits == nullptr || format.names == nullptr) return losses;
  const LIMITS& limits = *format.limits;
  const std::string tooLarge = WhyTooLarge(limits, dictionary, cases);
  if (!tooLarge.empty()) losses.push_back("It does not fit: " + tooLarge + ".");
  NoteNames(*format.names, dictionary, &losses);
  NoteVariables(
      dictionary, [&](const VARIABLE& v) { return v.label.size() > limits.labelBytes; },
      limits.labelBytes == 0
          ? "Descriptions are lost"
          : "Descriptions are cut to " + std::to_string(limits.labelBytes) + " bytes",
      &losses);
  NoteVariables(
      dictionary, [&](const VARIABLE& v) { return HasLongValueLabel(limits, dictionary, v); },
      limits.valueLabelBytes == 0
          ? "Value labels are lost"
          : "Value labels are cut to " + std::to_string(limits.valueLabelBytes) + " bytes",
      &losses);
  if (limits.remark != nullptr) losses.emplace_back(limits.remark);
  const auto speaks = [](const VARIABLE& v) {
    return IsText(v) || !v.label.empty() || v.labelSet >= 0;
  };
  const bool texts = std::any_of(dictionary.variables.begin(), dictionary.variables.end(), speaks);
  const bool nameless = cases == 0 && format.code == kJsonLines;  // there its remark speaks of it
  if ((texts || nameless) && limits.textRemark != nullptr) losses.emplace_back(limits.textRemark);
  return losses;
}

}  // namespace statrn32
