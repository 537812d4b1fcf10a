// Probit and logistic regression of ordinal variables by maximum likelihood.
#pragma once

#include <vector>

#include <Eigen/Core>

#include "engine/stats/RegressionFit.h"

namespace stats {

enum class ELink { Probit, Logistic };

// P(y <= category j) = F(threshold_j - x' b), F being the standard normal or the logistic
// distribution function (R. D. McKelvey and W. Zavoina, Journal of Mathematical Sociology 4, 1975,
// 103-120; P. McCullagh, Journal of the Royal Statistical Society B 42, 1980, 109-142). With two
// categories minus the threshold is the intercept of the binary model. Newton's method with the
// observed information; the likelihood is concave.
// `frequency`: sums of weights by category. A survey with a sample of the cases saves passes: the
// search starts where the sample's ends.
// Status: OneCategory; BadArgument (fewer than 2 categories, no x, a category without cases); those
// of RegressorScale with `variable`; Boundary: the x separate the categories, so that there is no
// maximum (`variable` is the x that runs away, -1 when it is a threshold); NotConverged.
struct OrdinalRegressionResult : RegressionFit {
  std::vector<double> frequency;  // by category
  std::vector<double> threshold, thresholdError;
  std::vector<double> slope, slopeError;
  Eigen::MatrixXd covariance;  // of the thresholds, then the slopes: from the observed information
  double mcFadden = 0, nagelkerke = 0;
};

OrdinalRegressionResult EstimateOrdinalRegression(const RegressionPass& pass,
                                                  const CRegressionSurvey& survey,
                                                  const std::vector<double>& frequency, ELink link);

// The alternative parameterization: an intercept, and thresholds of which the first is 0.
struct AlternativeParameters {
  double intercept = 0, interceptError = 0;
  std::vector<double> threshold, thresholdError;  // the first ones are 0
};
AlternativeParameters Alternative(const OrdinalRegressionResult& result);

}  // namespace stats
