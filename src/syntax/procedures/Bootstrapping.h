// Bootstrapping: samples drawn from the cases, with what is saved of each of them.
#pragma once

#include <array>

#include "syntax/procedures/ProcedureText.h"
#include "syntax/procedures/VariableNumbers.h"

struct BootstrappingChoices {
  CString samples = "100";
  CString fraction = "100";  // of the cases, in percent
  bool saveMatrices = false;
  CString matricesFile = "mafile";
  bool saveMeans = false;
  CString meansFile = "mefile";
  bool saveDeviations = false;
  CString deviationsFile = "sdfile";
  static constexpr std::array<NameList BootstrappingChoices::*, 0> kLists = {};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const BootstrappingChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const BootstrappingChoices& choices);
