#include "engine/stats/IntervalRegression.h"

#include <cmath>

#include "engine/stats/FixedThresholds.h"
#include "engine/stats/LinkInterval.h"

namespace stats {

namespace {

using Eigen::VectorXd;
using Values = std::vector<double>;

// What a case adds by its predictor and the precision 1 / s.
struct KnownThresholds {
  const Values& thresholds;
  double precision;

  CaseLikelihood operator()(const RegressionBlock& block, std::int64_t k, double predictor) const {
    const std::size_t category = block.codes[k];
    const bool first = category == 0;
    const bool last = category == thresholds.size();
    const double below = first ? 0 : thresholds[category - 1];
    const double above = last ? 0 : thresholds[category];
    const double lower = precision * below - predictor;
    const double upper = precision * above - predictor;
    const Interval at = IntervalAt<ProbitLink>(first ? nullptr : &lower, last ? nullptr : &upper);
    CaseLikelihood one;
    one.value = at.value;
    one.slope = -(at.upper + at.lower);
    one.curve = at.upperCurve + at.lowerCurve + 2 * at.mixed;
    one.other[0] = 0;
    one.otherSlope[0] = above * at.upper + below * at.lower;
    one.otherCurve[0] = above * above * at.upperCurve + below * below * at.lowerCurve +
                        2 * above * below * at.mixed;
    one.mixed[0] = -(above * (at.upperCurve + at.mixed) + below * (at.lowerCurve + at.mixed));
    return one;
  }
};

// The same where the precision is known to be 1.
struct KnownSpread {
  KnownThresholds all;

  CaseLikelihood operator()(const RegressionBlock& block, std::int64_t k, double predictor) const {
    CaseLikelihood one = all(block, k, predictor);
    one.other[0] = -1;
    return one;
  }
};

NewtonResult Maximise(const RegressionPass& pass, const CRegressionSurvey& survey,
                      const RegressorScale& scale, const Values& thresholds,
                      const FixedThresholdsResult& none, bool sdKnown) {
  const int x = survey.X();
  const CLikelihoodPass likelihood(scale, true, sdKnown ? 0 : 1);
  VectorXd start = VectorXd::Zero(x + (sdKnown ? 1 : 2));
  start(x) = none.mean / none.sd;
  if (!sdKnown) start(x + 1) = 1 / none.sd;
  return MaximiseFromSample(
      std::move(start), scale.n, pass, survey.Sample(),
      [&](const RegressionPass& over, const VectorXd& parameters, LikelihoodSums& sums) {
        const VectorXd slopes = parameters.head(x + 1);
        if (sdKnown) return likelihood.Sum(over, slopes, KnownSpread{{thresholds, 1}}, sums);
        sums.value = -HUGE_VAL;
        if (!(parameters(x + 1) > 0)) return true;
        return likelihood.Sum(over, slopes, KnownThresholds{thresholds, parameters(x + 1)}, sums);
      });
}

}  // namespace

IntervalRegressionResult EstimateIntervalRegression(const RegressionPass& pass,
                                                    const CRegressionSurvey& survey,
                                                    const Values& frequency,
                                                    const Values& thresholds) {
  IntervalRegressionResult result;
  const int x = survey.X();
  if (x < 1) return result;
  const RegressorScale scale = ScaleRegressors(survey);
  if (!result.Begin(scale)) return result;
  result.frequency = frequency;
  result.sdKnown = thresholds.size() == 1;
  const FixedThresholdsResult none = EstimateUnderThresholds(frequency, thresholds);
  result.status = none.status;
  if (result.status != EStatus::Ok) return result;
  const NewtonResult newton = Maximise(pass, survey, scale, thresholds, none, result.sdKnown);
  if (!result.End(newton, x)) {
    // Constant and precision run away only behind an x.
    if (result.status == EStatus::Boundary && result.variable < 0) result.variable = x - 1;
    return result;
  }
  static_cast<LocationScale&>(result) = LocationScaleOf(newton, scale, 0, 1);
  result.Compare(newton.sums.value, none.logLikelihood, x);
  return result;
}

}  // namespace stats
