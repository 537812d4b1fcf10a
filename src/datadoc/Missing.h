// Which cell values are missing: the one place where that is decided.
#pragma once

#include <cmath>

#include "datadoc/DataSet.h"

// The missing-value test. `variable` counts from 0.
//
// The order is that of the definitions: the three global values; then, when both bounds of the
// global range are set, the variable's own range (the global range is only a switch, which is kept
// on purpose, and the variable's bounds are compared without asking whether they are set); the
// single global value; the variable's three values; the variable's own range when both its bounds
// are set. Ranges include their bounds.
bool IsMissingValue(const TORVIKSTRUCT& data, double value, std::size_t variable);

// What everything that leaves the program treats as missing: a cell that the test above finds
// missing, one that holds the not-set value itself, or a NaN.
inline bool IsMissingCell(const TORVIKSTRUCT& data, double value, std::size_t variable) {
  return value == kNotSet || std::isnan(value) || IsMissingValue(data, value, variable);
}
