// RC lines: new values for old ones.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "datadoc/Missing.h"
#include "engine/Fault.h"
#include "engine/syntax/Words.h"

// A single old value is compared with the stored cell, so that a missing-value code can be recoded;
// a range takes only cells that are not missing. The first of the line's pairs that fits is
// applied.
struct RECODE {
  struct RANGE {
    double low = 0;
    double high = 0;
    bool single = false;
  };
  struct PAIR {
    std::vector<RANGE> old;
    double value = 0;
  };
  SyntaxLine line;
  std::vector<std::int32_t> variables;  // counted from 0
  std::vector<PAIR> pairs;

  // Which of the pairs is applied to a cell; none: it stays.
  std::optional<std::size_t> PairOf(double cell, bool missing) const;
  // The value that a cell gets.
  double NewValue(double cell, bool missing) const;
};

// Reads "list OLD=a,b-c NEW=d", the last two once or several times.
bool ParseRecode(CWords& words, RECODE& recode);
// Reads what follows the list.
bool ParseRecodePairs(CWords& words, RECODE& recode);
