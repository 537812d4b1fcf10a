// Imputation of missing values: by matching, and several times over from a normal sample.
#pragma once

#include <array>
#include <cstdint>

#include "syntax/procedures/ProcedureText.h"
#include "syntax/procedures/VariableNumbers.h"

enum class ImputationListing { All, Successful, None };

struct ImputationChoices {
  NameList imputed{};
  NameList matching{};
  CString varianceRatio{};  // as typed; empty: the engine's own
  ImputationListing listing = ImputationListing::All;
  static constexpr std::array kLists = {&ImputationChoices::imputed, &ImputationChoices::matching};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const ImputationChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const ImputationChoices& choices);

inline constexpr std::int64_t kMostImputationIterations = 10000;
inline constexpr std::int64_t kMostImputedDataSets = 1000;
inline constexpr const char* kSmallestConvergence = "0.0000001";
inline constexpr const char* kLargestConvergence = "0.01";

// What is done with cases that have no value in any of the variables.
enum class AllMissingCases { Delete = 0, Mean = 1, Leave = 2 };

struct MultipleImputationChoices {
  NameList variables{};
  bool mcmc = false;  // else the EM algorithm
  CString iterations = "200";
  CString convergence = "0.00001";
  CString dataSets = "1";  // of MCMC
  AllMissingCases allMissing = AllMissingCases::Delete;
  static constexpr std::array kLists = {&MultipleImputationChoices::variables};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const MultipleImputationChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const MultipleImputationChoices& choices);
