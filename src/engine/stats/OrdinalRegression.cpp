#include "engine/stats/OrdinalRegression.h"

#include <cmath>
#include <type_traits>

#include <Eigen/Cholesky>

#include "engine/stats/Distributions.h"
#include "engine/stats/Kernels.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

// log F of an interval of the link's distribution, with derivatives by its ends.
struct Interval {
  double value = 0;
  double upper = 0, lower = 0;
  double upperCurve = 0, lowerCurve = 0, mixed = 0;
};

struct ProbitLink {
  static double Density(double z) { return NormalDensity(z); }
  static double DensitySlope(double z, double density) { return -z * density; }
  static double Probability(double lower, double upper) { return NormalInterval(lower, upper); }
  // log F, with two derivatives.
  static void Below(double z, double& value, double& slope, double& curve) {
    value = LogNormalCdf(z);
    slope = InverseMills(z);
    curve = -slope * (slope + z);
  }
  static double Quantile(double p) { return NormalQuantile(p); }
};

struct LogisticLink {
  static double Cdf(double z) {
    return z >= 0 ? 1 / (1 + std::exp(-z)) : std::exp(z) / (1 + std::exp(z));
  }
  static double Density(double z) { return Cdf(z) * Cdf(-z); }
  static double DensitySlope(double z, double density) { return density * (Cdf(-z) - Cdf(z)); }
  static double Probability(double lower, double upper) {
    return lower > 0 ? Cdf(-lower) - Cdf(-upper) : Cdf(upper) - Cdf(lower);
  }
  static void Below(double z, double& value, double& slope, double& curve) {
    const double small = std::exp(-std::fabs(z));
    const double sum = 1 + small;
    value = (z < 0 ? z : 0) - std::log1p(small);
    slope = (z < 0 ? 1 : small) / sum;
    curve = -small / (sum * sum);
  }
  static double Quantile(double p) { return std::log(p / (1 - p)); }
};

template <typename Link>
Interval IntervalAt(const double* lower, const double* upper) {
  Interval interval;
  if (lower == nullptr) {
    Link::Below(*upper, interval.value, interval.upper, interval.upperCurve);
    return interval;
  }
  if (upper == nullptr) {  // F is symmetric
    Link::Below(-*lower, interval.value, interval.lower, interval.lowerCurve);
    interval.lower = -interval.lower;
    return interval;
  }
  const double p = Link::Probability(*lower, *upper);
  interval.value = std::log(p);
  const double atUpper = Link::Density(*upper);
  const double atLower = Link::Density(*lower);
  interval.upper = atUpper / p;
  interval.lower = -atLower / p;
  interval.upperCurve = Link::DensitySlope(*upper, atUpper) / p - interval.upper * interval.upper;
  interval.lowerCurve = -Link::DensitySlope(*lower, atLower) / p - interval.lower * interval.lower;
  interval.mixed = -interval.upper * interval.lower;
  return interval;
}

template <typename Link>
CaseLikelihood CaseAt(int category, const VectorXd& thresholds, double predictor) {
  const bool first = category == 0;
  const bool last = category == thresholds.size();
  const double lower = first ? 0 : thresholds(category - 1) - predictor;
  const double upper = last ? 0 : thresholds(category) - predictor;
  const Interval interval = IntervalAt<Link>(first ? nullptr : &lower, last ? nullptr : &upper);
  CaseLikelihood one;
  one.value = interval.value;
  one.slope = -(interval.upper + interval.lower);
  one.curve = interval.upperCurve + interval.lowerCurve + 2 * interval.mixed;
  if (!last) {
    one.other[0] = category;
    one.otherSlope[0] = interval.upper;
    one.otherCurve[0] = interval.upperCurve;
    one.mixed[0] = -(interval.upperCurve + interval.mixed);
  }
  if (!first) {
    one.other[1] = category - 1;
    one.otherSlope[1] = interval.lower;
    one.otherCurve[2] = interval.lowerCurve;
    one.mixed[1] = -(interval.lowerCurve + interval.mixed);
  }
  one.otherCurve[1] = interval.mixed;
  return one;
}

template <typename Link>
struct AnyCategories {
  const VectorXd& thresholds;

  CaseLikelihood operator()(const RegressionBlock& block, std::int64_t k, double predictor) const {
    return CaseAt<Link>(block.codes[k], thresholds, predictor);
  }
};

// The logistic model of two categories. Its predictor and its threshold enter as their difference,
// so that its derivatives are those of one variable; the sign says on which side the case lies.
struct TwoCategories {
  double threshold;

  void AddCases(const RegressionBlock& block, std::int64_t first, std::int64_t cases,
                CLikelihoodPass::Chunk& chunk, int columns, LikelihoodSums& sums) const {
    double z[CLikelihoodPass::kChunkCases], value[CLikelihoodPass::kChunkCases];
    double* const slope = chunk.slope.data();
    double* const curve = chunk.curve.data();
    double* const mixed = chunk.mixed.data();
    const std::uint8_t* const codes = block.codes + first;
    for (std::int64_t k = 0; k < cases; ++k) {
      const double distance = threshold - chunk.predictor(k);
      z[k] = codes[k] == 0 ? distance : -distance;
    }
    ActiveKernels().logistic(z, cases, value, slope, curve);
    const double* const weights = block.x.weights;
    double values = 0, slopes = 0, curves = 0;
    for (std::int64_t k = 0; k < cases; ++k) {
      const double weight = weights != nullptr ? weights[first + k] : 1.0;
      values += weight * value[k];
      slope[k] *= codes[k] == 0 ? -weight : weight;
      curve[k] *= weight;
      mixed[k] = -curve[k];
      slopes -= slope[k];
      curves += curve[k];
    }
    sums.value += values;
    sums.gradient(columns) += slopes;
    sums.hessian(columns, columns) += curves;
  }
};

bool CountCategories(const RegressionPass& pass, OrdinalRegressionResult& result) {
  return pass([&result](const RegressionBlock& block) {
    for (std::int64_t k = 0; k < block.x.cases; ++k) {
      result.frequency[block.codes[k]] += block.x.weights != nullptr ? block.x.weights[k] : 1;
    }
  });
}

template <typename Link>
VectorXd MarginalThresholds(const std::vector<double>& frequency, double n) {
  VectorXd thresholds(static_cast<Index>(frequency.size()) - 1);
  double cumulative = 0;
  for (Index j = 0; j < thresholds.size(); ++j) {
    cumulative += frequency[static_cast<std::size_t>(j)];
    thresholds(j) = Link::Quantile(cumulative / n);
  }
  return thresholds;
}

template <typename Link>
NewtonResult Maximise(const RegressionPass& pass, const RegressorScale& scale,
                      const OrdinalRegressionResult& result, int threads) {
  const auto cuts = static_cast<int>(result.frequency.size()) - 1;
  const CLikelihoodPass likelihood(scale, false, cuts, threads);
  const int x = likelihood.Columns();
  VectorXd start = VectorXd::Zero(x + cuts);
  start.tail(cuts) = MarginalThresholds<Link>(result.frequency, result.n);
  return MaximiseLikelihood(
      std::move(start), result.n, [&](const VectorXd& parameters, LikelihoodSums& sums) {
        const VectorXd thresholds = parameters.tail(cuts);
        for (Index j = 1; j < cuts; ++j) {
          if (thresholds(j) > thresholds(j - 1)) continue;
          sums.value = -HUGE_VAL;
          return true;
        }
        if constexpr (std::is_same_v<Link, LogisticLink>) {
          if (cuts == 1) {
            return likelihood.Sum(pass, parameters.head(x), TwoCategories{thresholds(0)}, sums);
          }
        }
        return likelihood.Sum(pass, parameters.head(x), AnyCategories<Link>{thresholds}, sums);
      });
}

// From standardised x back to x; parameters are then thresholds, slopes.
void TakeBack(const NewtonResult& newton, const RegressorScale& scale,
              OrdinalRegressionResult& result) {
  const Index x = scale.mean.size();
  const Index cuts = newton.parameters.size() - x;
  MatrixXd back = MatrixXd::Zero(x + cuts, x + cuts);
  for (Index j = 0; j < x; ++j) {
    back(cuts + j, j) = 1 / scale.sd(j);
    back.col(j).head(cuts).setConstant(scale.mean(j) / scale.sd(j));
  }
  back.topRightCorner(cuts, cuts).setIdentity();
  const VectorXd parameters = back * newton.parameters;
  const MatrixXd inverse =
      (-newton.sums.hessian).ldlt().solve(MatrixXd::Identity(x + cuts, x + cuts));
  result.covariance = back * inverse * back.transpose();
  for (Index j = 0; j < x + cuts; ++j) {
    const double error = std::sqrt(result.covariance(j, j));
    (j < cuts ? result.threshold : result.slope).push_back(parameters(j));
    (j < cuts ? result.thresholdError : result.slopeError).push_back(error);
  }
}

void ComputeFit(double logLikelihood, OrdinalRegressionResult& result) {
  const double n = result.n;
  result.logLikelihood = logLikelihood;
  for (const double f : result.frequency) result.logLikelihoodNull += f * std::log(f / n);
  result.ratio = std::max(0.0, 2 * (result.logLikelihood - result.logLikelihoodNull));
  result.df = static_cast<double>(result.slope.size());
  result.p = ChiSquareUpper(result.ratio, result.df);
  result.mcFadden = 1 - result.logLikelihood / result.logLikelihoodNull;
  result.nagelkerke = std::expm1(-result.ratio / n) / std::expm1(2 * result.logLikelihoodNull / n);
}

}  // namespace

OrdinalRegressionResult EstimateOrdinalRegression(const RegressionPass& pass, int x, int categories,
                                                  ELink link, int threads) {
  OrdinalRegressionResult result;
  result.status = EStatus::BadArgument;
  if (categories < 2 || x < 1) return result;
  const RegressorScale scale = ScaleRegressors(pass, x, threads);
  result.status = scale.status;
  result.variable = scale.variable;
  result.stopped = scale.stopped;
  result.n = scale.n;
  result.smallestPivot = scale.smallestPivot;
  if (result.stopped || result.status != EStatus::Ok) return result;
  result.frequency.assign(static_cast<std::size_t>(categories), 0);
  result.stopped = !CountCategories(pass, result);
  if (result.stopped) return result;
  for (const double f : result.frequency) {
    if (f == result.n) result.status = EStatus::OneCategory;
    if (f == 0 && result.status == EStatus::Ok) result.status = EStatus::BadArgument;
  }
  if (result.status != EStatus::Ok) return result;
  const NewtonResult newton = link == ELink::Probit
                                  ? Maximise<ProbitLink>(pass, scale, result, threads)
                                  : Maximise<LogisticLink>(pass, scale, result, threads);
  result.stopped = newton.stopped;
  result.status = newton.status;
  result.iterations = newton.iterations;
  if (newton.status == EStatus::Boundary && newton.runaway < x) result.variable = newton.runaway;
  if (newton.stopped || newton.status != EStatus::Ok) return result;
  result.gradient = newton.sums.gradient.cwiseAbs().maxCoeff() / result.n;
  TakeBack(newton, scale, result);
  ComputeFit(newton.sums.value, result);
  return result;
}

AlternativeParameters Alternative(const OrdinalRegressionResult& result) {
  AlternativeParameters alternative;
  alternative.intercept = -result.threshold.front();
  alternative.interceptError = result.thresholdError.front();
  const MatrixXd& v = result.covariance;
  for (std::size_t j = 0; j < result.threshold.size(); ++j) {
    const auto at = static_cast<Index>(j);
    alternative.threshold.push_back(result.threshold[j] - result.threshold.front());
    const double variance = v(at, at) + v(0, 0) - 2 * v(at, 0);
    alternative.thresholdError.push_back(j == 0 ? 0 : std::sqrt(std::max(0.0, variance)));
  }
  return alternative;
}

}  // namespace stats
