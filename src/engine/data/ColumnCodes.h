// The codes of a column's values: their places among those that it may have.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "engine/stats/Blocks.h"

// Finds the code of a value: by a table where the values are whole numbers close together.
class CColumnCodes {
 public:
  CColumnCodes(std::size_t column, const std::vector<double>& values)
      : column_(column), values_(values), base_(values.front()) {
    constexpr double kLongestTable = 256;
    for (const double value : values) {
      if (value != std::floor(value) || !(value - base_ < kLongestTable)) return;
    }
    table_.assign(static_cast<std::size_t>(values.back() - base_) + 1, stats::kMissingCode);
    for (std::size_t k = 0; k < values.size(); ++k) {
      table_[static_cast<std::size_t>(values[k] - base_)] = static_cast<std::uint8_t>(k);
    }
  }

  std::size_t Column() const { return column_; }

  std::uint8_t CodeOf(double value) const {
    if (!table_.empty()) {
      const double offset = value - base_;
      if (!(offset >= 0 && offset < static_cast<double>(table_.size()))) return stats::kMissingCode;
      const auto at = static_cast<std::size_t>(offset);
      return static_cast<double>(at) == offset ? table_[at] : stats::kMissingCode;
    }
    const auto at = std::lower_bound(values_.begin(), values_.end(), value);
    return at != values_.end() && *at == value ? static_cast<std::uint8_t>(at - values_.begin())
                                               : stats::kMissingCode;
  }

 private:
  std::size_t column_;
  std::vector<double> values_;
  double base_;
  std::vector<std::uint8_t> table_;
};
