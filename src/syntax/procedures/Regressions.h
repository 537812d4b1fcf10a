// The regressions: ordinary and two-stage least squares, probit, logistic, censored.
#pragma once

#include <array>

#include "syntax/procedures/ProcedureText.h"
#include "syntax/procedures/VariableNumbers.h"

struct RegressionChoices {
  NameList y{};
  NameList x{};
  static constexpr std::array kLists = {&RegressionChoices::y, &RegressionChoices::x};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const RegressionChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const RegressionChoices& choices);

struct TwoStageChoices {
  NameList y{};
  NameList x{};
  NameList instruments{};  // exogenous x variables are among them
  static constexpr std::array kLists = {&TwoStageChoices::y, &TwoStageChoices::x,
                                        &TwoStageChoices::instruments};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const TwoStageChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const TwoStageChoices& choices);

// Of both probit dialogs.
struct ProbitChoices {
  NameList y{};                // ordinal
  NameList x{};                // the covariates
  bool alternative = false;    // parameterization
  bool declareFixed = false;   // write an FI line for the covariates
  NameList fixedThresholds{};  // read from the file below
  CString thresholdFile{};
  NameList marginalThresholds{};  // not together with fixed ones
  static constexpr std::array kLists = {&ProbitChoices::y, &ProbitChoices::x,
                                        &ProbitChoices::fixedThresholds,
                                        &ProbitChoices::marginalThresholds};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const ProbitChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const ProbitChoices& choices);

// What is said when variables are added to the probit dialog's list of ordinal ones and some of
// them, or all, are of another type.
inline constexpr const char* kSomeNotOrdinal =
    "Some of the selected variable(s) are not ordinal variables.\n"
    "Only the ordianl variables will be added to the y-variable list.\n\n"
    "Press the <OK> button to add only the ordinal variables.\n"
    "Press the <Cancel> button to cancel the add operation";
inline constexpr const char* kSomeNotOrdinalCaption = "Non-Ordinal Variables Found";
inline constexpr const char* kNotOrdinal = "The selected variable(s) are not ordinal variables";
inline constexpr const char* kNotOrdinalCaption = "Not Ordinal Variables";

struct LogisticChoices {
  NameList y{};  // ordinal
  NameList x{};
  bool alternative = false;
  static constexpr std::array kLists = {&LogisticChoices::y, &LogisticChoices::x};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const LogisticChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const LogisticChoices& choices);

struct CensoredChoices {
  NameList y{};  // censored above, below or both
  NameList x{};
  static constexpr std::array kLists = {&CensoredChoices::y, &CensoredChoices::x};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const CensoredChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const CensoredChoices& choices);
