// Regression of a variable that is censored below, above or on both sides.
#pragma once

#include <cmath>

#include "engine/stats/Censored.h"
#include "engine/stats/LocationScale.h"
#include "engine/stats/RegressionFit.h"

namespace stats {

// A case at a limit counts as censored there. Limits that do not hold are infinite.
struct CensoringLimits {
  double lower = -HUGE_VAL, upper = HUGE_VAL;
};

// y = b0 + x' b + e, e normal (J. Tobin, Econometrica 26, 1958, 24-36). Newton's method in b / sd
// and 1 / sd, in which the likelihood is concave (R. J. Olsen, Econometrica 46, 1978, 1211-1215);
// standard errors from the observed information, by the delta method.
// Status: those of RegressorScale with `variable`; BadArgument (no x); TooFewCases (no more
// uncensored cases than coefficients), Constant with `variable` -1 (the uncensored y are all
// equal), NotFinite with -1 (their squares are no doubles), Boundary (an x tells the censored cases
// from the others: `variable`), NotConverged.
struct CensoredRegressionResult : RegressionFit, LocationScale {
  CensoringLimits limits;
  double below = 0, above = 0;  // cases at the limits
};

// `below`, `above`: where y is censored; the limits are its smallest and its largest value.
CensoredRegressionResult EstimateCensoredRegression(const RegressionPass& pass,
                                                    const CRegressionSurvey& survey, bool below,
                                                    bool above);

}  // namespace stats
