#include "syntax/procedures/Transformations.h"

#include <algorithm>
#include <filesystem>

#include "host/Text.h"
#include "syntax/procedures/ChoiceChecks.h"

namespace {

constexpr std::size_t kNameBytes = 16;
constexpr std::string_view kDataExtension = ".VSF";

CString WithoutBlanks(const CString& text) {
  CString packed;
  std::copy_if(text.begin(), text.end(), std::back_inserter(packed),
               [](char c) { return c != ' ' && c != '\t'; });
  return packed;
}

std::optional<ChoiceProblem> CheckNewData(const CString& name) {
  if (auto problem =
          CheckFileName(name, "Please enter the file name for the new data.", "newData")) {
    return problem;
  }
  const std::string_view file = Trimmed(name);
  const bool isSystemFile =
      file.size() > kDataExtension.size() &&
      EqualIgnoringCase(file.substr(file.size() - kDataExtension.size()), kDataExtension);
  if (isSystemFile) return std::nullopt;
  return ChoiceProblem{
      "The new data file is a system data file: its name ends in .VSF.", {}, "newData"};
}

// The number of the variable that is shown under this name; 0 when there is none.
std::int32_t NumberOfShown(const TORVIKSTRUCT& data, std::string_view name) {
  for (std::int32_t number = 1; number <= data.variables; ++number) {
    if (ShownName(data.variable[static_cast<std::size_t>(number) - 1].name) == name) return number;
  }
  return 0;
}

// A name that is not there yet: could it become one?
bool MayBeNew(std::string_view name) {
  const bool digits =
      std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
  return !digits && name.size() <= kNameBytes &&
         name.find_first_of(" \t+-*/()=!") == std::string_view::npos;
}

}  // namespace

CString ComputeLine(const TORVIKSTRUCT& data, const Computation& computation) {
  const CString name(Trimmed(computation.target));
  const std::int32_t number = MayBeNew(name) ? 0 : NumberOfShown(data, name);
  return "NE " + (number > 0 ? std::to_string(number) : name) + " = " +
         CString(Trimmed(computation.expression));
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const ComputeChoices& choices) {
  ProcedureText text;
  for (const Computation& computation : choices.computations) {
    text.lines.push_back(ComputeLine(data, computation));
  }
  text.newData = Trimmed(choices.newData);
  return text;
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const ComputeChoices& choices) {
  if (choices.computations.empty()) {
    return ChoiceProblem{
        "Please enter at least one variable and its expression.", {}, "expression"};
  }
  for (const auto& [target, expression] : choices.computations) {
    const std::string_view name = Trimmed(target);
    if (name.empty() || (!MayBeNew(name) && NumberOfShown(data, name) == 0)) {
      return ChoiceProblem{
          "The name of a new variable has 1 to 16 characters, none of them a blank or an "
          "operator, and is no number.",
          {},
          "target"};
    }
    if (Trimmed(expression).empty()) {
      return ChoiceProblem{
          "Please enter the expression of " + ShownName(target) + ".", {}, "expression"};
    }
  }
  return CheckNewData(choices.newData);
}

CString RecodeLine(const TORVIKSTRUCT& data, const RecodeChoices& choices) {
  CString line = "RC " + NumbersBetweenBlanks(data, choices.variables);
  for (const RecodeRule& rule : choices.rules) {
    line += " OLD=" + WithoutBlanks(rule.old) + " NEW=" + WithoutBlanks(rule.value);
  }
  return line;
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const RecodeChoices& choices) {
  ProcedureText text;
  text.lines = {RecodeLine(data, choices)};
  text.newData = Trimmed(choices.newData);
  return text;
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT&, const RecodeChoices& choices) {
  if (auto problem = CheckCount(choices.variables, 1, "at least one variable", "variables")) {
    return problem;
  }
  if (choices.rules.empty()) {
    return ChoiceProblem{"Please enter at least one old and one new value.", {}, "old"};
  }
  for (const RecodeRule& rule : choices.rules) {
    if (WithoutBlanks(rule.old).empty()) {
      return ChoiceProblem{"Please enter the old values.", {}, "old"};
    }
    if (!RealNumber(rule.value)) {
      return ChoiceProblem{"Please enter a number as the new value.", {}, "value"};
    }
  }
  return CheckNewData(choices.newData);
}
