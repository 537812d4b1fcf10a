#include "datadoc/Missing.h"

#include <algorithm>

namespace {

bool IsSet(double definition) {
  return definition != kNotSet;
}

bool Matches(double definition, double value) {
  return IsSet(definition) && definition == value;
}

template <std::size_t N>
bool MatchesSingleValue(const std::array<double, N>& missing, double value) {
  for (std::size_t i = 0; i < kMissingValues; ++i) {
    if (Matches(missing[i], value)) return true;
  }
  return false;
}

template <std::size_t N>
bool HasRange(const std::array<double, N>& missing) {
  return IsSet(missing[kRangeLow]) && IsSet(missing[kRangeHigh]);
}

bool LiesInRange(const MissingDefinition& missing, double value) {
  return missing[kRangeLow] <= value && value <= missing[kRangeHigh];
}

}  // namespace

bool IsMissingValue(const TORVIKSTRUCT& data, double value, std::size_t variable) {
  const MissingDefinition& own = data.variable[variable].missing;
  if (MatchesSingleValue(data.missing, value)) return true;
  if (HasRange(data.missing) && LiesInRange(own, value)) return true;
  if (Matches(data.missing[kGlobalValue], value)) return true;
  if (MatchesSingleValue(own, value)) return true;
  return HasRange(own) && LiesInRange(own, value);
}

CMissingTest::CMissingTest(const TORVIKSTRUCT& data, std::size_t variable) {
  const MissingDefinition& own = data.variable[variable].missing;
  for (std::size_t i = 0; i < kMissingValues; ++i) {
    Add(data.missing[i]);
    Add(own[i]);
  }
  Add(data.missing[kGlobalValue]);
  if (HasRange(data.missing) || HasRange(own)) {
    low_ = own[kRangeLow];
    high_ = own[kRangeHigh];
  }
}

void CMissingTest::Add(double definition) {
  double* const end = values_.data() + valueCount_;
  if (IsSet(definition) && std::find(values_.data(), end, definition) == end) {
    values_[valueCount_++] = definition;
  }
}
