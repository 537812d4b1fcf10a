// Influence values of two-step estimates: what one case adds to an estimate, to first order, the
// division by the number of cases included.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/stats/PairTables.h"
#include "engine/stats/Polychoric.h"
#include "engine/stats/Polyserial.h"

namespace stats {

// What a case in each category adds to a function of the thresholds of its variable: the sum over
// thresholds of `slopes`, the function's derivatives, times the threshold's influence value. An
// infinite threshold does not move.
std::vector<double> ThroughThresholds(const std::vector<double>& slopes,
                                      const std::vector<double>& thresholds,
                                      const std::vector<double>& frequencies);

// The influence of a case on the polychoric correlation of the variables i and j by its two
// categories, row after row; rows are those of i. One row and one column more stand at the end for
// a missing value. The pair has an estimate.
std::vector<double> PolychoricInfluence(const CPairTables& tables, const PolychoricMatrix& matrix,
                                        int i, int j);

// The same for a polyserial correlation, as a function of value and category.
class CPolyserialInfluence {
 public:
  // The result has status Ok.
  explicit CPolyserialInfluence(const PolyserialResult& result);

  // The category is in range.
  double operator()(double value, std::uint8_t category) const;

 private:
  double mean_, sd_, r_, n_, curve_;
  double byMean_, bySquare_;         // factors of z and of (z^2 - 1) / 2
  std::vector<double> thresholds_;   // with the infinite ends
  std::vector<double> byThreshold_;  // by category, through the thresholds
};

}  // namespace stats
