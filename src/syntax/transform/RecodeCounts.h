// How many cells each rule of a recoding would change.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "syntax/procedures/Transformations.h"

struct RecodeCounts {
  std::vector<std::int64_t> cells;  // by rule: those that it is the first to fit
  std::int64_t others = 0;          // cells that no rule fits
  std::int64_t cases = 0;           // that were looked at, from the first one
  bool all = false;                 // these are all cases of the file
};

// Counts in a system data file, in at most `mostCells` cells. Empty when the file cannot be read or
// the rules are not in order.
std::optional<RecodeCounts> CountRecoded(const CString& dataFile, const RecodeChoices& choices,
                                         std::int64_t mostCells);
