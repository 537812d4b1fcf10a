// The maximum of a log-likelihood over a correlation; shared by the two-step estimators.
#pragma once

#include <functional>

#include "engine/stats/Status.h"

namespace stats {

// Correlations are looked for up to this distance from zero.
inline constexpr double kLargestCorrelation = 0.9999999;

// Mean log-likelihood a case at a correlation, with two derivatives. `valid` is false where a
// probability is too small for a double.
struct CorrelationLikelihood {
  bool valid = true;
  double value = 0, slope = 0, curve = 0;
  double information = 0;  // expected under the model: minus the mean of the curve
};

struct CorrelationMaximum {
  EStatus status = EStatus::NotConverged;
  double r = 0;
  CorrelationLikelihood at;
  int iterations = 0;
};

// Newton steps inside a bracket that shrinks by the sign of the slope, until the slope is below
// 1e-13 (it is always below 1e-12 with status Ok). Boundary when the likelihood still rises, or
// does not fall any more, at the largest correlation: r then is that one. `cases` scales the mean
// to a total, to tell a flat likelihood from a maximum.
CorrelationMaximum MaximiseOverCorrelation(
    const std::function<CorrelationLikelihood(double)>& likelihood, double start, double cases);

}  // namespace stats
