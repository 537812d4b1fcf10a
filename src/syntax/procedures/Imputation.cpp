#include "syntax/procedures/Imputation.h"

#include <boost/format.hpp>

#include "host/Numbers.h"
#include "host/Text.h"
#include "syntax/procedures/ChoiceChecks.h"

namespace {

constexpr int kRatioDecimals = 6;

ChoiceProblem NumberProblem(const char* pattern, std::int64_t high, const char* field) {
  return {boost::str(boost::format(pattern) % 1 % high), {}, field};
}

bool IsWhole(const CString& text, std::int64_t high) {
  const auto number = WholeNumber(text);
  return number && *number >= 1 && *number <= high;
}

bool IsConvergence(const CString& text) {
  const auto number = RealNumber(text);
  return number && *number >= *RealNumber(kSmallestConvergence) &&
         *number <= *RealNumber(kLargestConvergence);
}

CString Typed(const CString& text) {
  return CString(Trimmed(text));
}

}  // namespace

ProcedureText TextOf(const TORVIKSTRUCT& data, const ImputationChoices& choices) {
  CString command = "IMPUTE (" + NumbersWithBlanks(data, choices.imputed) + ") (" +
                    NumbersWithBlanks(data, choices.matching) + ") ";
  if (const auto ratio = RealNumber(choices.varianceRatio)) {
    command += " VR=" + FormatFixed(*ratio, 0, kRatioDecimals) + ' ';
  }
  if (choices.listing == ImputationListing::None) command += "XL ";
  if (choices.listing == ImputationListing::Successful) command += "XN ";
  return {{command}, {}, false, {}};
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT&, const ImputationChoices& choices) {
  if (auto problem = CheckCount(choices.imputed, 1, "at least one variable to impute", "imputed")) {
    return problem;
  }
  if (auto problem =
          CheckCount(choices.matching, 1, "at least one matching variable", "matching")) {
    return problem;
  }
  if (choices.varianceRatio.empty()) return std::nullopt;
  const auto ratio = RealNumber(choices.varianceRatio);
  if (ratio && *ratio >= 0) return std::nullopt;
  return ChoiceProblem{
      "Please enter a number of at least 0 for the variance ratio.", {}, "varianceRatio"};
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const MultipleImputationChoices& choices) {
  CString command = (choices.mcmc ? "MC " : "EM ") + NumbersBetweenBlanks(data, choices.variables) +
                    " IT=" + Typed(choices.iterations) + " CC=" + Typed(choices.convergence) +
                    " TC=" + std::to_string(static_cast<int>(choices.allMissing));
  if (choices.mcmc) command += " RP=" + Typed(choices.dataSets);
  return {{command}, {}, false, {}};
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT&,
                                       const MultipleImputationChoices& choices) {
  if (auto problem = CheckCount(choices.variables, 1, "at least one variable", "variables")) {
    return problem;
  }
  if (!IsConvergence(choices.convergence)) {
    return ChoiceProblem{
        boost::str(boost::format("Convergence criterion must be a real number\nbetween %s and %s") %
                   kSmallestConvergence % kLargestConvergence),
        {},
        "convergence"};
  }
  if (!IsWhole(choices.iterations, kMostImputationIterations)) {
    return NumberProblem("Please enter a number between %d and %d\nfor the number of iterations",
                         kMostImputationIterations, "iterations");
  }
  if (choices.mcmc && !IsWhole(choices.dataSets, kMostImputedDataSets)) {
    return NumberProblem("Please enter a number between %d and %d\nfor the RP value",
                         kMostImputedDataSets, "dataSets");
  }
  return std::nullopt;
}
