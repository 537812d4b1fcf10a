// Which cell values are missing: the one place where that is decided.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <span>

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

// The same as IsMissingCell for one variable, prepared for many cells: the definition is looked
// through once, and what is left are a few comparisons. `variable` counts from 0.
class CMissingTest {
 public:
  CMissingTest() = default;
  CMissingTest(const TORVIKSTRUCT& data, std::size_t variable);

  bool operator()(double value) const {
    bool missing = std::isnan(value) || (low_ <= value && value <= high_);
    for (std::size_t i = 0; i < valueCount_; ++i) missing |= value == values_[i];
    return missing;
  }

  bool operator==(const CMissingTest&) const = default;

  // For loops of their own over many cells: the values that are missing, and the ends of the range
  // that is (low above high: none).
  std::span<const double> Values() const { return {values_.data(), valueCount_}; }
  double RangeLow() const { return low_; }
  double RangeHigh() const { return high_; }

  // Makes every `stride`th of the cells NaN where it is missing; `count` is that of all cells.
  void Blank(double* cells, std::size_t count, std::size_t stride) const;

 private:
  void Add(double definition);

  // The not-set value, four global ones and three of the variable.
  std::array<double, 8> values_ = {kNotSet, kNotSet, kNotSet, kNotSet,
                                   kNotSet, kNotSet, kNotSet, kNotSet};
  std::size_t valueCount_ = 1;
  double low_ = 1;  // an empty range
  double high_ = 0;
};
