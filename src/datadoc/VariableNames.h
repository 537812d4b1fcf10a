// The variables of a data set as a syntax names them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "datadoc/DataSet.h"

// Finds variables by what a syntax line says: a 1-based number, a name, or a range of either. A
// word of digits is always a number, whatever the variables are called. Names are compared as they
// are shown and case counts; of equal names the first is found.
class CVariableNames {
 public:
  explicit CVariableNames(const TORVIKSTRUCT& data);

  // How many variables there are; those that Add made are counted.
  std::int32_t Count() const { return count_; }
  // Makes `name` known as one more variable; returns it, counted from 0.
  std::int32_t Add(std::string_view name);
  // Counted from 0.
  std::optional<std::int32_t> Find(std::string_view word) const;
  // A variable, or the variables from one to another ("3-7", "A1-A5"), counted from 0.
  struct Range {
    std::int32_t first = 0;
    std::int32_t last = 0;
  };
  std::optional<Range> FindRange(std::string_view word) const;

 private:
  std::unordered_map<std::string, std::int32_t> byName_;
  std::int32_t count_ = 0;
};
