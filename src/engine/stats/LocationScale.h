// Estimates of a variable's regression with its residual standard deviation, from the parameters in
// which the likelihood is concave.
#pragma once

#include <vector>

#include <Eigen/Core>

#include "engine/stats/RegressionSurvey.h"

namespace stats {

struct LocationScale {
  std::vector<double> coefficient, standardError;  // the intercept first
  Eigen::MatrixXd covariance;                      // of the coefficients, then log sd
  double sd = 0, sdError = 0, logSdError = 0;
  // The share of x'b in the variance of y (R. D. McKelvey and W. Zavoina, Journal of Mathematical
  // Sociology 4, 1975, 103-120); where y is observed that of least squares.
  double rSquare = 0;
};

// The maximum in the slopes of the standardised x and the constant, both divided by the residual
// standard deviation, and in 1 / sd, all of them for (y - center) / spread. Standard errors from
// the observed information, by the delta method. Where the parameters end with the constant the
// standard deviation is `spread`, known.
LocationScale LocationScaleOf(const NewtonResult& newton, const RegressorScale& scale,
                              double center, double spread);

}  // namespace stats
