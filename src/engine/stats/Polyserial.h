// Polyserial correlations by two-step maximum likelihood.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/stats/Status.h"

namespace stats {

// U. Olsson, F. Drasgow and N. J. Dorans, Psychometrika 47, 1982, 337-347 (two-step): mean and
// standard deviation (divisor n) of the continuous variable and the thresholds of the ordinal one
// stay at their own estimates; the correlation maximises the likelihood of the categories given the
// continuous variable.
// Status: NoCases, ZeroWeights, NotFinite, Constant, OneCategory, BadArgument (a code out of
// range), Boundary (as for polychoric correlations), NotConverged.
struct PolyserialResult {
  EStatus status = EStatus::NoCases;
  std::int64_t cases = 0;
  double n = 0;
  double r = 0;
  double standardError = 0;    // the other parameters taken as known; observed information
  double pointPolyserial = 0;  // product-moment correlation with the category numbers
  double logLikelihood = 0;    // of the categories given the continuous variable
  double gradient = 0;         // of the mean log-likelihood
  double mean = 0, sd = 0;     // divisor n
  std::vector<double> thresholds;
  int iterations = 0;
  // With status Ok, for influence values: mean derivatives of the score by r (curve), by z, by z
  // times z, and by the thresholds; frequencies of the categories.
  double curve = 0, byZ = 0, bySquare = 0;
  std::vector<double> byThreshold;
  std::vector<double> frequencies;
};

// Cases with NaN, kMissingCode or no weight are left out. The values are gone through once an
// iteration.
PolyserialResult EstimatePolyserial(const double* values, const std::uint8_t* codes,
                                    std::int64_t cases, int categories,
                                    const double* weights = nullptr);

}  // namespace stats
