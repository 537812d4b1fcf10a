// Computed and recoded variables, written with all others to a new data file.
#pragma once

#include <array>
#include <vector>

#include "syntax/procedures/ProcedureText.h"
#include "syntax/procedures/VariableNumbers.h"

// A new variable, or new values of one that is there. Texts are as they are typed and shown, in
// UTF-8, which is what the engine compares names with.
struct Computation {
  CString target{};      // name
  CString expression{};  // as the engine reads it
};

struct ComputeChoices {
  std::vector<Computation> computations{};  // in this order
  CString newData{};                        // the new system data file
  static constexpr std::array<NameList ComputeChoices::*, 0> kLists = {};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const ComputeChoices& choices);
// Looks at names and files; what stands in an expression is the engine's to judge.
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const ComputeChoices& choices);
// "NE name = expression". A name that a line could not begin with is written as a number.
CString ComputeLine(const TORVIKSTRUCT& data, const Computation& computation);

struct RecodeRule {
  CString old{};    // values and ranges: "1,3-5", "LO-0", with blanks or without
  CString value{};  // the new one
};

struct RecodeChoices {
  NameList variables{};
  std::vector<RecodeRule> rules{};  // the first that fits is applied
  CString newData{};                // the new system data file
  static constexpr std::array kLists = {&RecodeChoices::variables};
};
ProcedureText TextOf(const TORVIKSTRUCT& data, const RecodeChoices& choices);
std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data, const RecodeChoices& choices);
// "RC 1 2 OLD=1,3-5 NEW=0 OLD=2 NEW=1"
CString RecodeLine(const TORVIKSTRUCT& data, const RecodeChoices& choices);
