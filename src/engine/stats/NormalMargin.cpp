#include "engine/stats/NormalMargin.h"

#include <cmath>

#include "engine/stats/Distributions.h"
#include "engine/stats/InfluenceValues.h"

namespace stats {

namespace {

// Negative second derivatives of frequency * log P(tail) in mean and standard deviation, at 0 and
// 1; `sign` is 1 for the tail below `edge`, -1 for the one above.
void AddTail(double frequency, double edge, double sign, double information[3]) {
  if (frequency == 0) return;
  const double mills = InverseMills(sign * edge);
  const double slope = sign * mills;
  const double curve = -mills * (mills + sign * edge);
  information[0] -= frequency * curve;
  information[1] -= frequency * (curve * edge + slope);
  information[2] -= frequency * (curve * edge * edge + 2 * slope * edge);
}

}  // namespace

CNormalMargin CNormalMargin::Continuous(const UnivariateResult& variable) {
  CNormalMargin margin;
  margin.status_ = variable.status;
  margin.mean_ = variable.mean;
  margin.sd_ = std::sqrt(variable.m2);
  CensoredSums sums;
  sums.n = variable.n;
  sums.mean = variable.mean;
  sums.m2 = variable.m2;
  if (margin.status_ == EStatus::Ok) margin.SetInformation(sums);
  return margin;
}

CNormalMargin CNormalMargin::Censored(const UnivariateResult& variable, ECensoring censoring,
                                      const CensoredResult& estimate) {
  CNormalMargin margin;
  margin.status_ = estimate.status;
  margin.mean_ = estimate.mean;
  margin.sd_ = estimate.sd;
  if (margin.status_ != EStatus::Ok) return margin;
  const CensoredSums sums = SumsAtRange(variable, censoring);
  if (sums.below > 0) {
    margin.lower_ = sums.lower;
    margin.edges_.push_back((sums.lower - margin.mean_) / margin.sd_);
  }
  if (sums.above > 0) {
    margin.upper_ = sums.upper;
    margin.edges_.push_back((sums.upper - margin.mean_) / margin.sd_);
  }
  margin.SetInformation(sums);
  return margin;
}

CNormalMargin CNormalMargin::Ordinal(const std::vector<double>& frequencies) {
  const ThresholdResult thresholds = EstimateThresholds(frequencies);
  CNormalMargin margin;
  margin.status_ = thresholds.status;
  margin.ordinal_ = true;
  margin.edges_ = thresholds.threshold;
  margin.frequencies_ = frequencies;
  return margin;
}

void CNormalMargin::SetInformation(const CensoredSums& sums) {
  const double mean = (sums.mean - mean_) / sd_;
  const double square = sums.m2 / (sd_ * sd_) + mean * mean;
  double information[3] = {sums.n, 2 * sums.n * mean, sums.n * (3 * square - 1)};
  AddTail(sums.below, (sums.lower - mean_) / sd_, 1, information);
  AddTail(sums.above, (sums.upper - mean_) / sd_, -1, information);
  const double determinant = information[0] * information[2] - information[1] * information[1];
  meanMean_ = information[2] / determinant;
  meanSpread_ = -information[1] / determinant;
  spreadSpread_ = information[0] / determinant;
}

SeenValue CNormalMargin::See(double value) const {
  if (std::isnan(value)) return {};
  if (value <= lower_) return {0, 0};
  if (value >= upper_) return {static_cast<int>(edges_.size()), 0};
  return {SeenValue::kPoint, (value - mean_) / sd_};
}

SeenValue CNormalMargin::See(std::uint8_t code) const {
  if (code > edges_.size()) return {};
  return {code, 0};
}

double CNormalMargin::Lower(int interval) const {
  return interval > 0 ? edges_[static_cast<std::size_t>(interval) - 1] : -HUGE_VAL;
}

double CNormalMargin::Upper(int interval) const {
  const auto at = static_cast<std::size_t>(interval);
  return at < edges_.size() ? edges_[at] : HUGE_VAL;
}

double CNormalMargin::Expectation(const SeenValue& seen) const {
  if (seen.interval == SeenValue::kPoint) return seen.z;
  const double lower = Lower(seen.interval), upper = Upper(seen.interval);
  if (std::isinf(lower)) return -InverseMills(upper);
  if (std::isinf(upper)) return InverseMills(-lower);
  return (NormalDensity(lower) - NormalDensity(upper)) / NormalInterval(lower, upper);
}

CNormalMargin::Scores CNormalMargin::ScoresOf(const SeenValue& seen) const {
  if (seen.interval == SeenValue::kPoint) return {seen.z, seen.z * seen.z - 1};
  if (seen.interval == SeenValue::kMissing) return {};
  const bool below = std::isinf(Lower(seen.interval));
  const double edge = below ? Upper(seen.interval) : Lower(seen.interval);
  const double slope = below ? -InverseMills(edge) : InverseMills(-edge);
  return {slope, slope * edge};
}

double CNormalMargin::OnLogDeviation(const SeenValue& seen) const {
  if (ordinal_) return 0;
  const Scores scores = ScoresOf(seen);
  return meanSpread_ * scores.mean + spreadSpread_ * scores.spread;
}

// A point moves by -1 with the mean and by -z with the standard deviation, a border likewise.
CNormalMargin::CInfluence::CInfluence(const CNormalMargin& margin, double point, double square,
                                      const std::vector<double>& edges) {
  if (margin.ordinal_) {
    byInterval_ = ThroughThresholds(edges, margin.edges_, margin.frequencies_);
    return;
  }
  double byMean = -point, bySpread = -square;
  for (std::size_t a = 0; a < edges.size(); ++a) {
    byMean -= edges[a];
    bySpread -= edges[a] * margin.edges_[a];
  }
  shift_ = byMean * margin.meanMean_ + bySpread * margin.meanSpread_;
  spread_ = byMean * margin.meanSpread_ + bySpread * margin.spreadSpread_;
  for (std::size_t a = 0; a <= edges.size(); ++a) {
    const Scores scores = margin.ScoresOf({static_cast<int>(a), 0});
    byInterval_.push_back(shift_ * scores.mean + spread_ * scores.spread);
  }
}

double CNormalMargin::CInfluence::operator()(const SeenValue& seen) const {
  if (seen.interval == SeenValue::kMissing) return 0;
  if (seen.interval == SeenValue::kPoint) return shift_ * seen.z + spread_ * (seen.z * seen.z - 1);
  return byInterval_[static_cast<std::size_t>(seen.interval)];
}

}  // namespace stats
