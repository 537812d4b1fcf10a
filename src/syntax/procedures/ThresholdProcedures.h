// Procedures about the thresholds and the distributions of ordinal variables.
#pragma once

#include <array>

#include "syntax/procedures/ProcedureText.h"
#include "syntax/procedures/VariableNumbers.h"

inline constexpr const char* kThresholdFileMissing =
    "The previously saved threshold file is missing!";

struct EqualThresholdChoices {
  NameList variables{};  // ordinal ones
  bool save = false;     // the thresholds, to the file below
  CString thresholdFile{};
  static constexpr std::array kLists = {&EqualThresholdChoices::variables};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const EqualThresholdChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const EqualThresholdChoices& choices);

struct FixThresholdChoices {
  NameList variables{};  // ordinal ones
  CString thresholdFile{};
  static constexpr std::array kLists = {&FixThresholdChoices::variables};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const FixThresholdChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const FixThresholdChoices& choices);
// The file of the thresholds, on the output line.
CString ThresholdTail(const CString& thresholdFile);
std::optional<ChoiceProblem> CheckThresholdFile(const CString& thresholdFile);

struct HomogeneityChoices {
  NameList pairs{};  // two names for each test
  static constexpr std::array kLists = {&HomogeneityChoices::pairs};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const HomogeneityChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const HomogeneityChoices& choices);
// The command of one test, "HT 3 7".
CString HomogeneityCommand(const TORVIKSTRUCT& data, const CString& first, const CString& second);

struct NormalScoreChoices {
  NameList variables{};
  static constexpr std::array kLists = {&NormalScoreChoices::variables};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const NormalScoreChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const NormalScoreChoices& choices);
