#include "syntax/transform/TransformCheck.h"

#include <algorithm>

#include "engine/syntax/Expression.h"
#include "engine/syntax/Recode.h"
#include "host/Text.h"

namespace {

std::optional<ChoiceProblem> ProblemIn(const TORVIKSTRUCT& data, const ComputeChoices& choices) {
  for (std::size_t i = 0; i < choices.computations.size(); ++i) {
    const CString problem = ExpressionProblem(data, choices.computations, i);
    if (problem.empty()) continue;
    return ChoiceProblem{
        ShownName(choices.computations[i].target) + ": " + problem, {}, "expression"};
  }
  return std::nullopt;
}

std::optional<ChoiceProblem> ProblemIn(const TORVIKSTRUCT& data, const RecodeChoices& choices) {
  for (const RecodeRule& rule : choices.rules) {
    CString problem = RuleProblem(data, rule);
    if (!problem.empty()) return ChoiceProblem{std::move(problem), {}, "rules"};
  }
  return std::nullopt;
}

template <typename Other>
std::optional<ChoiceProblem> ProblemIn(const TORVIKSTRUCT&, const Other&) {
  return std::nullopt;
}

}  // namespace

CString ExpressionProblem(const TORVIKSTRUCT& data, const std::vector<Computation>& computations,
                          std::size_t index) {
  CVariableNames names(data);
  for (std::size_t i = 0; i < index; ++i) {
    const std::string_view name = Trimmed(computations[i].target);
    if (!name.empty() && !names.Find(name)) names.Add(name);
  }
  const CString& text = computations[index].expression;
  CString problem;
  // A comment would cut the line.
  if (text.find('!') != CString::npos) return "! begins a comment";
  CExpression().Parse(Trimmed(text), names, problem);
  return problem;
}

CString RuleProblem(const TORVIKSTRUCT& data, const RecodeRule& rule) {
  RecodeChoices one;
  one.rules = {rule};
  const CVariableNames names(data);
  const SyntaxLine line{1, RecodeLine(data, one)};
  CWords words(line, names);
  words.TakeVariables("variables", {"OLD="}, 0);
  RECODE recode;
  return ParseRecodePairs(words, recode) ? CString() : words.Fault().cause;
}

std::optional<ChoiceProblem> TransformProblem(const TORVIKSTRUCT& data,
                                              const ProcedureChoices& choices) {
  return std::visit([&](const auto& chosen) { return ProblemIn(data, chosen); }, choices);
}

bool CanStandInExpression(const CString& name) {
  const std::string_view shown = Trimmed(name);
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return !shown.empty() && !std::all_of(shown.begin(), shown.end(), isDigit) &&
         !isDigit(shown.front()) && shown.front() != '.' &&
         shown.find_first_of(" \t+-*/()=!") == std::string_view::npos;
}
