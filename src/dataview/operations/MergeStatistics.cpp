#include "dataview/operations/MergeStatistics.h"

#include <algorithm>

RangeStatistics MergeStatistics(const RangeStatistics& a, const RangeStatistics& b) {
  if (a.values == 0 || b.values == 0) {
    RangeStatistics result = a.values == 0 ? b : a;
    result.missing = a.missing + b.missing;
    return result;
  }
  RangeStatistics result;
  result.values = a.values + b.values;
  result.missing = a.missing + b.missing;
  const double share = static_cast<double>(b.values) / static_cast<double>(result.values);
  result.mean = a.mean + (b.mean - a.mean) * share;
  result.minimum = std::min(a.minimum, b.minimum);
  result.maximum = std::max(a.maximum, b.maximum);
  return result;
}
