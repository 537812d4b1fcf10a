#include "engine/stats/CensoredRegression.h"

#include <algorithm>
#include <numbers>

#include <Eigen/Cholesky>

#include "engine/stats/Distributions.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

// Sums of y over the uncensored cases, about the first of them.
struct Uncensored {
  double n = 0, origin = 0, sum = 0, squares = 0;
  bool known = false;

  void Add(double y, double weight) {
    if (!known) origin = y;
    known = true;
    n += weight;
    sum += weight * (y - origin);
    squares += weight * (y - origin) * (y - origin);
  }
  double Mean() const { return origin + sum / n; }
  double Variance() const {
    const double variance = squares / n - (sum / n) * (sum / n);
    return variance < 0 ? 0 : variance;
  }
};

// In the standardised y: the predictor is that of y / sd, `precision` is 1 / sd.
CaseLikelihood CaseAt(double y, const CensoringLimits& limits, double precision, double predictor) {
  CaseLikelihood one;
  one.other[0] = 0;
  const bool below = y <= limits.lower;
  if (!below && y < limits.upper) {
    const double z = precision * y - predictor;
    one.value = std::log(precision) - 0.5 * std::log(2 * std::numbers::pi) - 0.5 * z * z;
    one.slope = z;
    one.curve = -1;
    one.otherSlope[0] = 1 / precision - z * y;
    one.otherCurve[0] = -1 / (precision * precision) - y * y;
    one.mixed[0] = y;
    return one;
  }
  const double limit = below ? limits.lower : limits.upper;
  const double sign = below ? 1 : -1;
  const double z = sign * (precision * limit - predictor);
  one.value = LogNormalCdf(z);
  const double slope = InverseMills(z);
  const double curve = -slope * (slope + z);
  one.slope = -sign * slope;
  one.curve = curve;
  one.otherSlope[0] = sign * limit * slope;
  one.otherCurve[0] = limit * limit * curve;
  one.mixed[0] = -limit * curve;
  return one;
}

// Derivatives of coefficients and log sd by the parameters of the concave form.
void TakeBack(const NewtonResult& newton, const RegressorScale& scale, double center, double spread,
              CensoredRegressionResult& result) {
  const Index x = scale.mean.size();
  const double precision = newton.parameters(x + 1);
  // Parameters: slopes of standardised x, constant, precision. Results: intercept, slopes, log sd.
  MatrixXd back = MatrixXd::Zero(x + 2, x + 2);
  VectorXd values = VectorXd::Zero(x + 2);
  const double unit = spread / precision;
  values(0) = center + unit * newton.parameters(x);
  back(0, x) = unit;
  back(0, x + 1) = -unit * newton.parameters(x) / precision;
  for (Index j = 0; j < x; ++j) {
    const double scaled = unit / scale.sd(j);
    values(j + 1) = scaled * newton.parameters(j);
    back(j + 1, j) = scaled;
    back(j + 1, x + 1) = -values(j + 1) / precision;
    values(0) -= scale.mean(j) * values(j + 1);
    back.row(0) -= scale.mean(j) * back.row(j + 1);
  }
  back(x + 1, x + 1) = -1 / precision;
  const MatrixXd inverse = (-newton.sums.hessian).ldlt().solve(MatrixXd::Identity(x + 2, x + 2));
  result.covariance = back * inverse * back.transpose();
  for (Index j = 0; j <= x; ++j) {
    result.coefficient.push_back(values(j));
    result.standardError.push_back(std::sqrt(result.covariance(j, j)));
  }
  result.sd = unit;
  result.logSdError = std::sqrt(result.covariance(x + 1, x + 1));
  result.sdError = result.sd * result.logSdError;
}

// `slopes`: of the standardised x, in units of the residual standard deviation.
void ComputeFit(const CensoringLimits& limits, const Uncensored& inside,
                const RegressorScale& scale, const VectorXd& slopes,
                CensoredRegressionResult& result) {
  const auto known = [](double limit) { return std::isfinite(limit) ? limit : 0.0; };
  const CensoredResult none =
      EstimateCensored({result.below, known(limits.lower), result.above, known(limits.upper),
                        inside.n, inside.Mean(), inside.Variance()});
  result.logLikelihoodNull = none.logLikelihood;
  result.ratio = std::max(0.0, 2 * (result.logLikelihood - none.logLikelihood));
  result.df = static_cast<double>(slopes.size());
  result.p = ChiSquareUpper(result.ratio, result.df);
  // The standardised x have the divisor n - 1, the residuals n.
  const double explained = slopes.dot(scale.correlation * slopes) * (result.n - 1) / result.n;
  result.rSquare = explained / (explained + 1);
}

}  // namespace

CensoredRegressionResult EstimateCensoredRegression(const RegressionPass& pass, int x,
                                                    const CensoringLimits& limits, int threads) {
  CensoredRegressionResult result;
  result.status = EStatus::BadArgument;
  if (x < 1) return result;
  const RegressorScale scale = ScaleRegressors(pass, x, threads);
  result.status = scale.status;
  result.variable = scale.variable;
  result.stopped = scale.stopped;
  result.n = scale.n;
  result.smallestPivot = scale.smallestPivot;
  if (result.stopped || result.status != EStatus::Ok) return result;
  Uncensored inside;
  result.stopped = !pass([&](const RegressionBlock& block) {
    for (std::int64_t k = 0; k < block.x.cases; ++k) {
      const double y = block.y[k * block.yStride];
      const double weight = block.x.weights != nullptr ? block.x.weights[k] : 1;
      if (y <= limits.lower) {
        result.below += weight;
      } else if (y >= limits.upper) {
        result.above += weight;
      } else {
        inside.Add(y, weight);
      }
    }
  });
  if (result.stopped) return result;
  if (!(inside.n > x + 1)) result.status = EStatus::TooFewCases;
  if (result.status == EStatus::Ok && !std::isfinite(inside.Variance()))
    result.status = EStatus::NotFinite;
  if (result.status == EStatus::Ok && !(inside.Variance() > 0)) result.status = EStatus::Constant;
  if (result.status != EStatus::Ok) return result;

  const double center = inside.Mean();
  const double spread = std::sqrt(inside.Variance());
  const CensoringLimits standard{(limits.lower - center) / spread,
                                 (limits.upper - center) / spread};
  const CLikelihoodPass likelihood(scale, true, 1, threads);
  VectorXd start = VectorXd::Zero(x + 2);
  start(x + 1) = 1;
  const NewtonResult newton = MaximiseLikelihood(
      std::move(start), result.n, [&](const VectorXd& parameters, LikelihoodSums& sums) {
        const double precision = parameters(x + 1);
        sums.value = -HUGE_VAL;
        if (!(precision > 0)) return true;
        return likelihood.Sum(
            pass, parameters.head(x + 1),
            [&](const RegressionBlock& block, std::int64_t k, double predictor) {
              return CaseAt((block.y[k * block.yStride] - center) / spread, standard, precision,
                            predictor);
            },
            sums);
      });
  result.stopped = newton.stopped;
  result.status = newton.status;
  result.iterations = newton.iterations;
  if (newton.status == EStatus::Boundary && newton.runaway < x) result.variable = newton.runaway;
  if (newton.stopped || newton.status != EStatus::Ok) return result;
  result.gradient = newton.sums.gradient.cwiseAbs().maxCoeff() / result.n;
  result.logLikelihood = newton.sums.value - inside.n * std::log(spread);
  TakeBack(newton, scale, center, spread, result);
  ComputeFit(limits, inside, scale, newton.parameters.head(x), result);
  return result;
}

}  // namespace stats
