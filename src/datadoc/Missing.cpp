#include "datadoc/Missing.h"

#include <algorithm>
#include <limits>
#include <type_traits>

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

// With a stride of one known beforehand the compiler does several cells at once.
void CMissingTest::Blank(double* cells, std::size_t count, std::size_t stride) const {
  constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
  const auto blank = [&](auto step) {
    for (std::size_t i = 0; i < count; i += step) {
      const double value = cells[i];
      const auto first = static_cast<unsigned>(value == values_[0]);
      const auto second = static_cast<unsigned>(value == values_[1]);
      const auto ranged =
          static_cast<unsigned>(low_ <= value) & static_cast<unsigned>(value <= high_);
      cells[i] = (first | second | ranged) != 0 ? kMissing : value;
    }
    for (std::size_t k = 2; k < valueCount_; ++k) {
      for (std::size_t i = 0; i < count; i += step) {
        cells[i] = cells[i] == values_[k] ? kMissing : cells[i];
      }
    }
  };
  if (stride == 1) return blank(std::integral_constant<std::size_t, 1>());
  blank(stride);
}

void CMissingTest::Add(double definition) {
  double* const end = values_.data() + valueCount_;
  if (IsSet(definition) && std::find(values_.data(), end, definition) == end) {
    values_[valueCount_++] = definition;
  }
}
