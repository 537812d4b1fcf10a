#include "syntax/procedures/Regressions.h"

#include "syntax/procedures/ChoiceChecks.h"
#include "syntax/procedures/ThresholdProcedures.h"

namespace {

// "RG 1 2 ON 3 4"
CString OnCommand(const TORVIKSTRUCT& data, const char* command, const NameList& y,
                  const NameList& x) {
  return CString(command) + ' ' + NumbersBetweenBlanks(data, y) + " ON " +
         NumbersBetweenBlanks(data, x);
}

ProcedureText OneLine(CString command, bool bareOutput = false) {
  return {{std::move(command)}, {}, bareOutput, {}};
}

std::optional<ChoiceProblem> CheckSides(const NameList& y, const NameList& x, const char* yKind,
                                        const char* xKind) {
  if (auto problem = CheckCount(y, 1, yKind, "y")) return problem;
  if (auto problem = CheckCount(x, 1, xKind, "x")) return problem;
  return CheckDisjoint(y, x, "x");
}

constexpr const char* kOneY = "at least one Y variable";
constexpr const char* kOneX = "at least one X variable";
constexpr const char* kOneOrdinal = "at least one ordinal variable";
constexpr const char* kOneCovariate = "at least one covariate";

std::optional<ChoiceProblem> CheckThresholds(const ProbitChoices& choices) {
  for (const NameList* list : {&choices.fixedThresholds, &choices.marginalThresholds}) {
    for (const CString& name : *list) {
      if (CheckDisjoint({name}, choices.y, "")) continue;
      return ChoiceProblem{"The thresholds of " + ShownName(name) +
                               " are chosen, but it is none of the ordinal variables of the "
                               "regression.",
                           {},
                           "y"};
    }
  }
  if (choices.fixedThresholds.empty()) return std::nullopt;
  if (!choices.marginalThresholds.empty()) {
    return ChoiceProblem{
        "Thresholds can be fixed or marginal in one run, not both.", {}, "fixedThresholds"};
  }
  return CheckThresholdFile(choices.thresholdFile);
}

}  // namespace

ProcedureText TextOf(const TORVIKSTRUCT& data, const RegressionChoices& choices) {
  return OneLine(OnCommand(data, "RG", choices.y, choices.x));
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT&, const RegressionChoices& choices) {
  return CheckSides(choices.y, choices.x, kOneY, kOneX);
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const TwoStageChoices& choices) {
  return OneLine(OnCommand(data, "TS", choices.y, choices.x) + " WITH " +
                 NumbersBetweenBlanks(data, choices.instruments));
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT&, const TwoStageChoices& choices) {
  if (auto problem = CheckSides(choices.y, choices.x, kOneY, kOneX)) return problem;
  return CheckCount(choices.instruments, 1, "at least one instrumental variable", "instruments");
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const ProbitChoices& choices) {
  ProcedureText text;
  if (!choices.fixedThresholds.empty()) {
    text = TextOf(data, FixThresholdChoices{choices.fixedThresholds, choices.thresholdFile});
  }
  if (choices.declareFixed) text.lines.push_front("FI " + NumbersWithBlanks(data, choices.x));
  if (!choices.marginalThresholds.empty()) {
    text.lines.push_back("MT " + NumbersWithBlanks(data, choices.marginalThresholds));
  }
  text.lines.push_back(OnCommand(data, "PR", choices.y, choices.x) +
                       (choices.alternative ? " AP" : ""));
  return text;
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const ProbitChoices& choices) {
  if (auto problem = CheckSides(choices.y, choices.x, kOneOrdinal, kOneCovariate)) return problem;
  if (CheckKind(data, choices.y, IsOrdinalVariable, "ordinal variable", "y")) {
    return ChoiceProblem{kNotOrdinal, kNotOrdinalCaption, "y"};
  }
  return CheckThresholds(choices);
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const LogisticChoices& choices) {
  return OneLine(OnCommand(data, "LO", choices.y, choices.x) + (choices.alternative ? " AP" : ""),
                 true);
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const LogisticChoices& choices) {
  if (auto problem = CheckSides(choices.y, choices.x, kOneOrdinal, kOneCovariate)) return problem;
  return CheckKind(data, choices.y, IsOrdinalVariable, "ordinal variable", "y");
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const CensoredChoices& choices) {
  return OneLine(OnCommand(data, "CR", choices.y, choices.x), true);
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const CensoredChoices& choices) {
  if (auto problem =
          CheckSides(choices.y, choices.x, "at least one censored variable", kOneCovariate)) {
    return problem;
  }
  return CheckKind(data, choices.y, IsCensoredVariable, "censored variable", "y");
}
