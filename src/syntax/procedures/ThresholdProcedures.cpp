#include "syntax/procedures/ThresholdProcedures.h"

#include <filesystem>

#include "syntax/procedures/ChoiceChecks.h"

ProcedureText TextOf(const TORVIKSTRUCT& data, const EqualThresholdChoices& choices) {
  ProcedureText text;
  text.lines = {"ET " + NumbersBetweenBlanks(data, choices.variables)};
  if (choices.save) text.outputTail = ThresholdTail(choices.thresholdFile);
  return text;
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const EqualThresholdChoices& choices) {
  if (auto problem =
          CheckCount(choices.variables, 2, "at least two ordinal variables", "variables")) {
    return problem;
  }
  if (auto problem =
          CheckKind(data, choices.variables, IsOrdinalVariable, "ordinal variable", "variables")) {
    return problem;
  }
  if (!choices.save) return std::nullopt;
  return CheckFileName(choices.thresholdFile, "Please enter the file name for the thresholds.",
                       "thresholdFile");
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const FixThresholdChoices& choices) {
  ProcedureText text;
  for (const std::int32_t number : VariableNumbers(data, choices.variables)) {
    text.lines.push_back("FT " + std::to_string(number));
  }
  text.outputTail = ThresholdTail(choices.thresholdFile);
  return text;
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const FixThresholdChoices& choices) {
  if (auto problem =
          CheckCount(choices.variables, 1, "at least one ordinal variable", "variables")) {
    return problem;
  }
  if (auto problem =
          CheckKind(data, choices.variables, IsOrdinalVariable, "ordinal variable", "variables")) {
    return problem;
  }
  return CheckThresholdFile(choices.thresholdFile);
}

CString ThresholdTail(const CString& thresholdFile) {
  return " TH=" + thresholdFile + ' ';
}

std::optional<ChoiceProblem> CheckThresholdFile(const CString& thresholdFile) {
  std::error_code error;
  if (!thresholdFile.empty() && std::filesystem::is_regular_file(thresholdFile, error)) {
    return std::nullopt;
  }
  return ChoiceProblem{kThresholdFileMissing, {}, "thresholdFile"};
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const HomogeneityChoices& choices) {
  ProcedureText text;
  for (std::size_t i = 0; i + 1 < choices.pairs.size(); i += 2) {
    text.lines.push_back(HomogeneityCommand(data, choices.pairs[i], choices.pairs[i + 1]));
  }
  return text;
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const HomogeneityChoices& choices) {
  const NameList& pairs = choices.pairs;
  bool inOrder = !pairs.empty() && pairs.size() % 2 == 0;
  for (std::size_t i = 0; inOrder && i < pairs.size(); i += 2) inOrder = pairs[i] != pairs[i + 1];
  if (!inOrder) return ChoiceProblem{"Please select two ordinal variables.", {}, "pairs"};
  return CheckKind(data, pairs, IsOrdinalVariable, "ordinal variable", "pairs");
}

CString HomogeneityCommand(const TORVIKSTRUCT& data, const CString& first, const CString& second) {
  return "HT " + std::to_string(VariableNumber(data, first)) + ' ' +
         std::to_string(VariableNumber(data, second));
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const NormalScoreChoices& choices) {
  ProcedureText text;
  text.lines = {"NS " + NumbersWithBlanks(data, choices.variables)};
  return text;
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT&, const NormalScoreChoices& choices) {
  return CheckCount(choices.variables, 1, "at least one variable", "variables");
}
