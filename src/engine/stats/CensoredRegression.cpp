#include "engine/stats/CensoredRegression.h"

#include <algorithm>
#include <numbers>

#include "engine/stats/Distributions.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

// The cases at the limits, and the moments of y over the others. Sums of twice the digits lose
// nothing when the former are taken from those of all cases.
CensoredSums CountCensored(const CRegressionSurvey& survey, bool below, bool above) {
  const CCrossProducts& all = survey.Products();
  const ValueRange& range = survey.Range();
  const int y = survey.X();
  CensoredSums sums;
  if (below) {
    sums.below = range.atLow;
    sums.lower = range.low;
  }
  if (above && !(below && range.low == range.high)) sums.above = range.atHigh;
  if (above) sums.upper = range.high;
  const Quad n = all.N() - Quad(sums.below) - Quad(sums.above);
  const Quad lower = sums.lower, upper = sums.upper;
  sums.n = static_cast<double>(n);
  if (!(sums.n > 0)) return sums;
  const Quad mean = (all.Sum(y, y + 1) - Quad(sums.below) * lower - Quad(sums.above) * upper) / n;
  const Quad square =
      (all.Sum(y, y) - Quad(sums.below) * lower * lower - Quad(sums.above) * upper * upper) / n;
  constexpr double kNothing = 1e-26;
  const Quad variance = square - mean * mean;
  sums.mean = static_cast<double>(mean);
  sums.m2 = variance > square * Quad(kNothing) ? static_cast<double>(variance) : 0;
  if (!std::isfinite(static_cast<double>(square))) sums.m2 = HUGE_VAL;
  return sums;
}

// What a case adds, in the standardised y: the predictor is that of y / sd, `precision` is 1 / sd.
class CCaseModel {
 public:
  CCaseModel(const CensoringLimits& limits, double center, double spread)
      : limits_(limits), center_(center), spread_(spread) {}

  CCaseModel At(double precision) const {
    CCaseModel model = *this;
    model.precision_ = precision;
    model.constant_ = std::log(precision) - 0.5 * std::log(2 * std::numbers::pi);
    return model;
  }

  CaseLikelihood operator()(const RegressionBlock& block, std::int64_t k, double predictor) const {
    const double value = block.y[k * block.yStride];
    const bool below = value <= limits_.lower;
    const double y = (value - center_) / spread_;
    return below || value >= limits_.upper ? Censored(y, below, predictor) : Inside(y, predictor);
  }

 private:
  CaseLikelihood Inside(double y, double predictor) const {
    CaseLikelihood one;
    const double z = precision_ * y - predictor;
    one.value = constant_ - 0.5 * z * z;
    one.slope = z;
    one.curve = -1;
    one.other[0] = 0;
    one.otherSlope[0] = 1 / precision_ - z * y;
    one.otherCurve[0] = -1 / (precision_ * precision_) - y * y;
    one.mixed[0] = y;
    return one;
  }

  CaseLikelihood Censored(double limit, bool below, double predictor) const {
    CaseLikelihood one;
    const double sign = below ? 1 : -1;
    const double z = sign * (precision_ * limit - predictor);
    const LogCdfAndMills at = NormalLogCdfAndMills(z);
    const double slope = at.mills;
    one.value = at.logCdf;
    const double curve = -slope * (slope + z);
    one.slope = -sign * slope;
    one.curve = curve;
    one.other[0] = 0;
    one.otherSlope[0] = sign * limit * slope;
    one.otherCurve[0] = limit * limit * curve;
    one.mixed[0] = -limit * curve;
    return one;
  }

  CensoringLimits limits_;
  double center_, spread_, precision_ = 1, constant_ = 0;
};

EStatus Check(const CensoredSums& sums, int x) {
  if (!(sums.n > x + 1)) return EStatus::TooFewCases;
  if (!std::isfinite(sums.m2)) return EStatus::NotFinite;
  return sums.m2 > 0 ? EStatus::Ok : EStatus::Constant;
}

}  // namespace

CensoredRegressionResult EstimateCensoredRegression(const RegressionPass& pass,
                                                    const CRegressionSurvey& survey, bool below,
                                                    bool above) {
  CensoredRegressionResult result;
  const int x = survey.X();
  if (x < 1) return result;
  const RegressorScale scale = ScaleRegressors(survey);
  if (!result.Begin(scale)) return result;
  const CensoredSums inside = CountCensored(survey, below, above);
  result.below = inside.below;
  result.above = inside.above;
  if (below) result.limits.lower = inside.lower;
  if (above) result.limits.upper = inside.upper;
  result.status = Check(inside, x);
  if (result.status != EStatus::Ok) return result;

  const double spread = std::sqrt(inside.m2);
  const CCaseModel model(result.limits, inside.mean, spread);
  const CLikelihoodPass likelihood(scale, true, 1);
  VectorXd start = VectorXd::Zero(x + 2);
  start(x + 1) = 1;
  const NewtonResult newton = MaximiseFromSample(
      std::move(start), result.n, pass, survey.Sample(),
      [&](const RegressionPass& over, const VectorXd& parameters, LikelihoodSums& sums) {
        sums.value = -HUGE_VAL;
        if (!(parameters(x + 1) > 0)) return true;
        return likelihood.Sum(over, parameters.head(x + 1), model.At(parameters(x + 1)), sums);
      });
  if (!result.End(newton, x)) return result;
  static_cast<LocationScale&>(result) = LocationScaleOf(newton, scale, inside.mean, spread);
  result.Compare(newton.sums.value - inside.n * std::log(spread),
                 EstimateCensored(inside).logLikelihood, x);
  return result;
}

}  // namespace stats
