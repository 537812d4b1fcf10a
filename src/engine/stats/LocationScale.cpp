#include "engine/stats/LocationScale.h"

#include <cmath>

#include <Eigen/Cholesky>

namespace stats {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

LocationScale LocationScaleOf(const NewtonResult& newton, const RegressorScale& scale,
                              double center, double spread) {
  const Index x = scale.mean.size();
  const Index size = newton.parameters.size();
  const bool known = size == x + 1;
  const double precision = known ? 1 : newton.parameters(x + 1);
  // Parameters: slopes of standardised x, constant, precision. Results: intercept, slopes, log sd.
  MatrixXd back = MatrixXd::Zero(x + 2, size);
  VectorXd values = VectorXd::Zero(x + 1);
  const double unit = spread / precision;
  values(0) = center + unit * newton.parameters(x);
  back(0, x) = unit;
  if (!known) back(0, x + 1) = -unit * newton.parameters(x) / precision;
  for (Index j = 0; j < x; ++j) {
    const double scaled = unit / scale.sd(j);
    values(j + 1) = scaled * newton.parameters(j);
    back(j + 1, j) = scaled;
    if (!known) back(j + 1, x + 1) = -values(j + 1) / precision;
    values(0) -= scale.mean(j) * values(j + 1);
    back.row(0) -= scale.mean(j) * back.row(j + 1);
  }
  if (!known) back(x + 1, x + 1) = -1 / precision;
  const MatrixXd inverse = (-newton.sums.hessian).ldlt().solve(MatrixXd::Identity(size, size));
  LocationScale result;
  result.covariance = back * inverse * back.transpose();
  for (Index j = 0; j <= x; ++j) {
    result.coefficient.push_back(values(j));
    result.standardError.push_back(std::sqrt(result.covariance(j, j)));
  }
  result.sd = unit;
  result.logSdError = std::sqrt(result.covariance(x + 1, x + 1));
  result.sdError = result.sd * result.logSdError;
  // The standardised x have the divisor n - 1, the residuals n.
  const VectorXd slopes = newton.parameters.head(x);
  const double explained = slopes.dot(scale.correlation * slopes) * (scale.n - 1) / scale.n;
  result.rSquare = explained / (explained + 1);
  return result;
}

}  // namespace stats
