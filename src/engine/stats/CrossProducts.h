// Sums of products over complete cases with twice the digits of a double, for regressions.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/stats/Blocks.h"
#include "engine/stats/Quad.h"
#include "engine/stats/Status.h"

namespace stats {

// Products and sums carry 106 bits, so that neither a large common offset nor nearly collinear
// variables cost digits of the result. A case with a missing value, or with a weight that is not
// above zero, is left out. Memory: a few matrices.
class CCrossProducts {
 public:
  explicit CCrossProducts(int variables);

  // Both throw std::invalid_argument for another number of variables.
  void Add(const CaseBlock& block);
  void Merge(const CCrossProducts& other);

  int Variables() const { return variables_; }
  std::int64_t Cases() const { return cases_; }
  bool Finite() const { return finite_; }                 // false once an infinite cell was seen
  Quad N() const { return Sum(variables_, variables_); }  // the sum of weights

  // Ok; Constant; NotFinite when squares of the values are too large or too small for a double.
  EStatus CheckSpread(int i) const;

  // Sum of w x_i x_j. The variable behind the last one is 1 in every case.
  Quad Sum(int i, int j) const;
  Quad Mean(int i) const;
  // Sum of w (x_i - mean) (x_j - mean); N is above 0.
  Quad Centred(int i, int j) const;

 private:
  int variables_;
  std::int64_t cases_ = 0;
  bool finite_ = true;
  std::vector<Quad> sums_;  // lower triangle by rows
};

}  // namespace stats
