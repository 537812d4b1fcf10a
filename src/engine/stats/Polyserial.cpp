#include "engine/stats/Polyserial.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "engine/stats/Blocks.h"
#include "engine/stats/CorrelationSearch.h"
#include "engine/stats/PolyserialModel.h"
#include "engine/stats/Thresholds.h"
#include "engine/stats/Univariate.h"

namespace stats {

namespace {

struct Case {
  double z;  // standardised
  double weight;
  int category;
};

CorrelationLikelihood LikelihoodAt(const std::vector<Case>& cases,
                                   const std::vector<double>& thresholds, double n, double r) {
  CorrelationLikelihood sums;
  const int last = static_cast<int>(thresholds.size());
  for (const Case& c : cases) {
    const PolyserialEdge low = PolyserialEdgeAt(
        c.category > 0 ? thresholds[static_cast<std::size_t>(c.category - 1)] : -HUGE_VAL, c.z, r);
    const PolyserialEdge high = PolyserialEdgeAt(
        c.category < last ? thresholds[static_cast<std::size_t>(c.category)] : HUGE_VAL, c.z, r);
    const double p = NormalInterval(low.u, high.u);
    if (!(p > std::numeric_limits<double>::min())) {
      sums.valid = false;
      return sums;
    }
    const double slope = (high.slope - low.slope) / p;
    const double share = c.weight / n;
    sums.value += share * std::log(p);
    sums.slope += share * slope;
    sums.curve += share * ((high.curve - low.curve) / p - slope * slope);
  }
  return sums;
}

// Collects the usable cases; their z still hold the raw values.
EStatus Collect(const double* values, const std::uint8_t* codes, std::int64_t cases, int categories,
                const double* weights, std::vector<Case>& usable) {
  bool withoutWeight = false;
  for (std::int64_t k = 0; k < cases; ++k) {
    if (std::isnan(values[k]) || codes[k] == kMissingCode) continue;
    const double weight = weights ? weights[k] : 1.0;
    if (!(weight > 0) || std::isinf(weight)) {
      withoutWeight = true;
      continue;
    }
    if (std::isinf(values[k])) return EStatus::NotFinite;
    if (codes[k] >= categories) return EStatus::BadArgument;
    usable.push_back({values[k], weight, codes[k]});
  }
  if (usable.empty()) return withoutWeight ? EStatus::ZeroWeights : EStatus::NoCases;
  return EStatus::Ok;
}

UnivariateResult Describe(const std::vector<Case>& cases) {
  std::vector<double> values, weights;
  for (const Case& c : cases) {
    values.push_back(c.z);
    weights.push_back(c.weight);
  }
  return DescribeColumn(values.data(), static_cast<std::int64_t>(values.size()), weights.data());
}

// Product-moment correlation with the category numbers.
double PointPolyserial(const std::vector<Case>& cases, const std::vector<double>& frequencies,
                       double n) {
  double mean = 0;
  for (std::size_t a = 0; a < frequencies.size(); ++a)
    mean += static_cast<double>(a) * frequencies[a] / n;
  double squares = 0, products = 0;
  for (const Case& c : cases) {
    const double d = c.category - mean;
    squares += c.weight * d * d;
    products += c.weight * d * c.z;
  }
  return products / std::sqrt(squares * n);
}

// The covariance of z with the categories divides into r and the densities at the thresholds.
double StartingValue(const std::vector<Case>& cases, const std::vector<double>& thresholds,
                     double n) {
  double products = 0, densities = 0;
  for (const Case& c : cases) products += c.weight * c.category * c.z / n;
  for (const double t : thresholds) densities += NormalDensity(t);
  return products / densities;
}

// Mean derivatives of the score at the estimates, by everything that was estimated before.
void AddScoreSlopes(const std::vector<Case>& cases, PolyserialResult& result) {
  const std::vector<double>& thresholds = result.thresholds;
  result.byThreshold.assign(thresholds.size(), 0);
  for (const Case& c : cases) {
    const auto a = static_cast<std::size_t>(c.category);
    const PolyserialScore score =
        PolyserialScoreAt(a > 0 ? thresholds[a - 1] : -HUGE_VAL,
                          a < thresholds.size() ? thresholds[a] : HUGE_VAL, c.z, result.r);
    const double share = c.weight / result.n;
    result.byZ += share * score.byZ;
    result.bySquare += share * score.byZ * c.z;
    if (a > 0) result.byThreshold[a - 1] += share * score.byLower;
    if (a < thresholds.size()) result.byThreshold[a] += share * score.byUpper;
  }
}

}  // namespace

PolyserialResult EstimatePolyserial(const double* values, const std::uint8_t* codes,
                                    std::int64_t cases, int categories, const double* weights) {
  PolyserialResult result;
  std::vector<Case> usable;
  result.status = categories < 1 ? EStatus::BadArgument
                                 : Collect(values, codes, cases, categories, weights, usable);
  if (result.status != EStatus::Ok) return result;
  const UnivariateResult continuous = Describe(usable);
  std::vector<double> frequencies(static_cast<std::size_t>(categories), 0.0);
  for (const Case& c : usable) frequencies[static_cast<std::size_t>(c.category)] += c.weight;
  const ThresholdResult ordinal = EstimateThresholds(frequencies);
  result.cases = continuous.cases;
  result.n = continuous.n;
  result.mean = continuous.mean;
  result.thresholds = ordinal.threshold;
  result.status = continuous.status != EStatus::Ok ? continuous.status : ordinal.status;
  if (result.status != EStatus::Ok) return result;
  result.sd = std::sqrt(continuous.m2);
  for (Case& c : usable) c.z = (c.z - result.mean) / result.sd;
  result.pointPolyserial = PointPolyserial(usable, frequencies, result.n);

  const CorrelationMaximum maximum = MaximiseOverCorrelation(
      [&](double r) { return LikelihoodAt(usable, result.thresholds, result.n, r); },
      StartingValue(usable, result.thresholds, result.n), result.n);
  result.status = maximum.status;
  result.iterations = maximum.iterations;
  result.r = maximum.r;
  if (!maximum.at.valid) {
    // The categories are cut from the continuous variable: no correlation below 1 fits as well.
    if (result.status == EStatus::Ok) result.status = EStatus::NotConverged;
    return result;
  }
  result.gradient = maximum.at.slope;
  result.logLikelihood = result.n * maximum.at.value;
  if (result.status != EStatus::Ok) return result;
  result.standardError = 1 / std::sqrt(-maximum.at.curve * result.n);
  result.curve = maximum.at.curve;
  result.frequencies = std::move(frequencies);
  AddScoreSlopes(usable, result);
  return result;
}

}  // namespace stats
