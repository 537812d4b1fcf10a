// Regression of a variable that is censored below, above or on both sides.
#pragma once

#include <cmath>
#include <vector>

#include <Eigen/Core>

#include "engine/stats/Censored.h"
#include "engine/stats/RegressionCases.h"

namespace stats {

// A case at or beyond a limit counts as censored there. Limits that do not hold are infinite.
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
struct CensoredRegressionResult {
  EStatus status = EStatus::NoCases;
  int variable = -1;
  bool stopped = false;
  double n = 0, below = 0, above = 0;
  std::vector<double> coefficient, standardError;  // the intercept first
  Eigen::MatrixXd covariance;                      // of the coefficients, then log sd
  double sd = 0, sdError = 0, logSdError = 0;
  double logLikelihood = 0, logLikelihoodNull = 0;  // null: no x
  double ratio = 0, df = 0, p = 1;                  // likelihood ratio of the slopes
  // Of the variable behind y: the share of x'b in its variance (R. D. McKelvey and W. Zavoina,
  // Journal of Mathematical Sociology 4, 1975, 103-120); without censoring that of least squares.
  double rSquare = 0;
  double gradient = 0;  // largest, of the mean log-likelihood in standardised variables
  double smallestPivot = 1;
  int iterations = 0;
};

CensoredRegressionResult EstimateCensoredRegression(const RegressionPass& pass, int x,
                                                    const CensoringLimits& limits, int threads = 1);

}  // namespace stats
