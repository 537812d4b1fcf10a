// What the dialog "Missing Values for ..." shows and takes over, as texts.
#pragma once

#include <array>

#include "datadoc/DataSet.h"

// The five fields of a definition: three single values, low and high end of the range. Empty: not
// set.
using MissingTexts = std::array<CString, 5>;

struct MissingEntries {
  bool noMissing = true;  // "No missing values": the variable's fields are not looked at
  MissingTexts variable;
  MissingTexts global;
  std::int32_t deletion = kListwise;
};

// The definitions as the dialog opens with them: numbers with six decimals, a range only when both
// its ends are set.
MissingEntries OpenMissingEntries(const VARSTRUCT& variable, const TORVIKSTRUCT& data);

// Takes the fields over. A text that is no number is 0; a range whose one end is empty is none. A
// field that still shows what it opened with keeps the value as it was, with all its digits.
void TakeMissingEntries(const MissingEntries& entries, VARSTRUCT& variable, TORVIKSTRUCT& data);
