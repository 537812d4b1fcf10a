// Columns of all cases, for the methods that go through them again and again.
#pragma once

#include <vector>

#include "engine/screen/Variables.h"

struct COLUMNSTORE {
  std::vector<std::vector<double>> cells;        // of the numeric variables, by place
  std::vector<std::vector<std::uint8_t>> codes;  // of the ordinal ones
  std::vector<double> weights;                   // empty: every case counts 1

  std::int64_t Cases() const {
    return static_cast<std::int64_t>(cells.empty() ? codes.front().size() : cells.front().size());
  }
  const double* Weights() const { return weights.empty() ? nullptr : weights.data(); }
  void Add(const CASEBLOCK& block);
};

// Reads the cases once more: 8 bytes a numeric cell and 1 an ordinal one. When there is not enough
// memory for them, `what` ("correlations of ...") names in `fault` what they were for. `megabytes`
// says what is held, for the output.
bool HoldColumns(ENGINERUN& run, const SCREENVARIABLES& variables, const CString& what,
                 COLUMNSTORE& store, std::int64_t& megabytes, FAULT& fault);
