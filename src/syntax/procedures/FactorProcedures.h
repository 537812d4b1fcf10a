// Exploratory factor analysis, factor analysis of ordinal variables, principal components.
#pragma once

#include <array>

#include "syntax/procedures/ProcedureText.h"
#include "syntax/procedures/VariableNumbers.h"

struct FactorAnalysisChoices {
  NameList subset{};  // empty: all variables
  bool minres = false;
  CString factors{};  // as typed; empty: the engine chooses
  bool scores = false;
  static constexpr std::array kLists = {&FactorAnalysisChoices::subset};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const FactorAnalysisChoices& choices);
// Always in order: whatever is wrong, the engine reports.
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const FactorAnalysisChoices& choices);

struct OrdinalFactorChoices {
  NameList subset{};              // empty: all variables
  bool proportionalOdds = false;  // the response function: normal ogive or proportional odds
  CString factors{};              // empty: the engine chooses
  static constexpr std::array kLists = {&OrdinalFactorChoices::subset};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const OrdinalFactorChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const OrdinalFactorChoices& choices);

struct PrincipalComponentChoices {
  NameList subset{};  // empty: all variables
  bool correlations = false;
  bool scores = false;
  CString components{};  // empty: all
  static constexpr std::array kLists = {&PrincipalComponentChoices::subset};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const PrincipalComponentChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const PrincipalComponentChoices& choices);
