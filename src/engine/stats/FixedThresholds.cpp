#include "engine/stats/FixedThresholds.h"

#include <algorithm>
#include <cmath>

#include "engine/stats/Distributions.h"
#include "engine/stats/Scoring.h"

namespace stats {

namespace {

using Eigen::MatrixXd;
using Eigen::VectorXd;
using Values = std::vector<double>;

// Probabilities of the categories of a normal variable, with derivatives by mean and sd.
class CMarginLikelihood {
 public:
  CMarginLikelihood(const Values& frequencies, const Values& thresholds, double n, bool withSd)
      : frequencies_(frequencies), thresholds_(thresholds), n_(n), withSd_(withSd) {}

  Scoring operator()(const VectorXd& x) const {
    Scoring scoring;
    const double mean = x(0);
    const double sd = withSd_ ? x(1) : 1;
    if (!(sd > 0)) return scoring;
    scoring.Begin(x.size());
    for (std::size_t a = 0; a < frequencies_.size(); ++a) {
      const double low = a > 0 ? (thresholds_[a - 1] - mean) / sd : -HUGE_VAL;
      const double high = a < thresholds_.size() ? (thresholds_[a] - mean) / sd : HUGE_VAL;
      VectorXd slope(x.size());
      const double atLow = NormalDensity(low);
      const double atHigh = NormalDensity(high);
      slope(0) = -(atHigh - atLow) / sd;
      if (withSd_) {
        slope(1) =
            -((std::isinf(high) ? 0 : high * atHigh) - (std::isinf(low) ? 0 : low * atLow)) / sd;
      }
      if (!scoring.Add(frequencies_[a] / n_, NormalInterval(low, high), slope)) return scoring;
    }
    return scoring;
  }

 private:
  const Values& frequencies_;
  const Values& thresholds_;
  double n_;
  bool withSd_;
};

double SaturatedLogLikelihood(const Values& frequencies, double n) {
  double sum = 0;
  for (const double f : frequencies) {
    if (f > 0) sum += f * std::log(f / n);
  }
  return sum;
}

}  // namespace

FixedThresholdsResult EstimateUnderThresholds(const Values& frequencies, const Values& thresholds) {
  FixedThresholdsResult result;
  if (thresholds.size() + 1 != frequencies.size() || frequencies.size() < 2) return result;
  for (std::size_t t = 0; t < thresholds.size(); ++t) {
    if (!std::isfinite(thresholds[t]) || (t > 0 && !(thresholds[t] > thresholds[t - 1])))
      return result;
  }
  std::size_t first = frequencies.size(), last = 0;
  for (std::size_t a = 0; a < frequencies.size(); ++a) {
    if (frequencies[a] == 0) continue;
    first = std::min(first, a);
    last = a;
    result.n += frequencies[a];
  }
  const bool withSd = frequencies.size() > 2;
  result.status = !(result.n > 0)              ? EStatus::ZeroWeights
                  : first == last              ? EStatus::OneCategory
                  : withSd && last - first < 2 ? EStatus::Boundary
                                               : EStatus::Ok;
  if (result.status != EStatus::Ok) return result;
  VectorXd x(withSd ? 2 : 1);
  x(0) = 0;
  if (withSd) x(1) = 1;
  const CMarginLikelihood likelihood(frequencies, thresholds, result.n, withSd);
  const double standard = result.n * likelihood(x).value;
  Scoring at;
  if (!MaximiseByScoring(x, at, likelihood)) {
    result.status = EStatus::NotConverged;
    return result;
  }
  const MatrixXd covariance =
      at.information.ldlt().solve(MatrixXd::Identity(x.size(), x.size())) / result.n;
  result.mean = x(0);
  result.meanError = std::sqrt(covariance(0, 0));
  if (withSd) {
    result.sd = x(1);
    result.sdError = std::sqrt(covariance(1, 1));
  }
  result.logLikelihood = result.n * at.value;
  const double saturated = SaturatedLogLikelihood(frequencies, result.n);
  const int cells = static_cast<int>(thresholds.size());
  const auto test = [saturated](double logLikelihood, int df) {
    FixedThresholdsResult::Test t;
    t.df = df;
    t.likelihoodRatio = std::max(0.0, 2 * (saturated - logLikelihood));
    t.p = ChiSquareUpper(t.likelihoodRatio, df);
    return t;
  };
  result.fitted = test(result.logLikelihood, cells - static_cast<int>(x.size()));
  result.standard = test(standard, cells);
  return result;
}

}  // namespace stats
