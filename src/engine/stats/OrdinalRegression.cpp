#include "engine/stats/OrdinalRegression.h"

#include <cmath>
#include <type_traits>

#include <Eigen/Cholesky>

#include "engine/stats/Distributions.h"
#include "engine/stats/Kernels.h"
#include "engine/stats/LinkInterval.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

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
    double* const slope = chunk.Slope();
    double* const curve = chunk.Curve();
    double* const mixed = chunk.Mixed(0);
    const std::uint8_t* const codes = block.codes + first;
    for (std::int64_t k = 0; k < cases; ++k) {
      const double distance = threshold - chunk.Predictor()[k];
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
NewtonResult Maximise(const RegressionPass& pass, const CRegressionSample& sample,
                      const RegressorScale& scale, const OrdinalRegressionResult& result) {
  const auto cuts = static_cast<int>(result.frequency.size()) - 1;
  const CLikelihoodPass likelihood(scale, false, cuts);
  const int x = likelihood.Columns();
  VectorXd start = VectorXd::Zero(x + cuts);
  start.tail(cuts) = MarginalThresholds<Link>(result.frequency, result.n);
  return MaximiseFromSample(
      std::move(start), result.n, pass, sample,
      [&](const RegressionPass& over, const VectorXd& parameters, LikelihoodSums& sums) {
        const VectorXd thresholds = parameters.tail(cuts);
        for (Index j = 1; j < cuts; ++j) {
          if (thresholds(j) > thresholds(j - 1)) continue;
          sums.value = -HUGE_VAL;
          return true;
        }
        if constexpr (std::is_same_v<Link, LogisticLink>) {
          if (cuts == 1) {
            return likelihood.Sum(over, parameters.head(x), TwoCategories{thresholds(0)}, sums);
          }
        }
        return likelihood.Sum(over, parameters.head(x), AnyCategories<Link>{thresholds}, sums);
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
  double null = 0;
  for (const double f : result.frequency) null += f * std::log(f / n);
  result.Compare(logLikelihood, null, static_cast<int>(result.slope.size()));
  result.mcFadden = 1 - result.logLikelihood / result.logLikelihoodNull;
  result.nagelkerke = std::expm1(-result.ratio / n) / std::expm1(2 * result.logLikelihoodNull / n);
}

}  // namespace

OrdinalRegressionResult EstimateOrdinalRegression(const RegressionPass& pass,
                                                  const CRegressionSurvey& survey,
                                                  const std::vector<double>& frequency,
                                                  ELink link) {
  OrdinalRegressionResult result;
  const int x = survey.X();
  if (frequency.size() < 2 || x < 1) return result;
  const RegressorScale scale = ScaleRegressors(survey);
  if (!result.Begin(scale)) return result;
  result.frequency = frequency;
  for (const double f : result.frequency) {
    if (f == result.n) result.status = EStatus::OneCategory;
    if (f == 0 && result.status == EStatus::Ok) result.status = EStatus::BadArgument;
  }
  if (result.status != EStatus::Ok) return result;
  const NewtonResult newton = link == ELink::Probit
                                  ? Maximise<ProbitLink>(pass, survey.Sample(), scale, result)
                                  : Maximise<LogisticLink>(pass, survey.Sample(), scale, result);
  if (!result.End(newton, x)) return result;
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
