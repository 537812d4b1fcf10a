#include "engine/stats/Thresholds.h"

#include <algorithm>
#include <cmath>

#include "engine/stats/Distributions.h"

namespace stats {

namespace {

// Ok when at least two categories have cases.
EStatus CheckFrequencies(const std::vector<double>& frequencies, double& total) {
  if (frequencies.empty()) return EStatus::NoCases;
  int filled = 0;
  for (const double f : frequencies) {
    if (!std::isfinite(f) || f < 0) return EStatus::NotFinite;
    total += f;
    filled += f > 0 ? 1 : 0;
  }
  if (!std::isfinite(total)) return EStatus::NotFinite;
  if (filled == 0) return EStatus::ZeroWeights;
  return filled == 1 ? EStatus::OneCategory : EStatus::Ok;
}

// Quantiles of the cumulative proportions. The smaller of the two tails is summed from its own
// end, so that it keeps its digits.
std::vector<double> Cuts(const std::vector<double>& frequencies, double total,
                         std::vector<double>* standardErrors) {
  std::vector<double> cuts;
  double below = 0;
  for (std::size_t a = 0; a + 1 < frequencies.size(); ++a) {
    below += frequencies[a];
    double above = 0;
    for (std::size_t b = frequencies.size() - 1; b > a; --b) above += frequencies[b];
    const double cut =
        below <= above ? NormalQuantile(below / total) : -NormalQuantile(above / total);
    cuts.push_back(cut);
    if (standardErrors) {
      const double density = NormalDensity(cut);
      const double spread = std::sqrt(below / total * (above / total) / total);
      standardErrors->push_back(density > 0 ? spread / density : 0.0);
    }
  }
  return cuts;
}

// Brings the scores to the mean and standard deviation of the values. These are made small first,
// so that squares of large ones stay finite.
std::vector<double> Rescale(const std::vector<double>& score, const std::vector<double>& values,
                            const std::vector<double>& frequencies, double total) {
  const double unit = std::max(std::fabs(values.front()), std::fabs(values.back()));
  double mean = 0, scoreMean = 0;
  for (std::size_t j = 0; j < values.size(); ++j) {
    mean += frequencies[j] * (values[j] / unit) / total;
    scoreMean += frequencies[j] * score[j] / total;
  }
  double squares = 0, scoreSquares = 0;
  for (std::size_t j = 0; j < values.size(); ++j) {
    const double rest = values[j] / unit - mean;
    squares += frequencies[j] * rest * rest;
    scoreSquares += frequencies[j] * (score[j] - scoreMean) * (score[j] - scoreMean);
  }
  const double factor = std::sqrt(squares / scoreSquares);
  std::vector<double> rescaled;
  for (std::size_t j = 0; j < values.size(); ++j) {
    const double scaled = frequencies[j] > 0 ? mean + (score[j] - scoreMean) * factor : mean;
    rescaled.push_back(unit * scaled);
  }
  return rescaled;
}

}  // namespace

ThresholdResult EstimateThresholds(const std::vector<double>& frequencies) {
  ThresholdResult result;
  result.status = CheckFrequencies(frequencies, result.n);
  for (std::size_t a = 0; a < frequencies.size(); ++a) {
    if (frequencies[a] == 0) result.empty.push_back(static_cast<int>(a));
  }
  if (result.status != EStatus::Ok) return result;
  result.threshold = Cuts(frequencies, result.n, &result.standardError);
  return result;
}

NormalScoresResult ComputeNormalScores(const std::vector<double>& values,
                                       const std::vector<double>& frequencies) {
  NormalScoresResult result;
  double total = 0;
  result.status = CheckFrequencies(frequencies, total);
  if (values.size() != frequencies.size()) result.status = EStatus::BadArgument;
  for (std::size_t j = 0; j < values.size(); ++j) {
    if (!std::isfinite(values[j])) result.status = EStatus::NotFinite;
    if (j > 0 && !(values[j] > values[j - 1])) result.status = EStatus::BadArgument;
  }
  if (result.status == EStatus::OneCategory) result.status = EStatus::Constant;
  if (result.status == EStatus::Ok && !(total > 1)) result.status = EStatus::TooFewCases;
  if (result.status != EStatus::Ok) return result;

  const std::vector<double> cuts = Cuts(frequencies, total, nullptr);
  double lower = 0;  // density at the lower cut
  for (std::size_t j = 0; j < values.size(); ++j) {
    const double upper = j < cuts.size() ? NormalDensity(cuts[j]) : 0.0;
    result.score.push_back(frequencies[j] > 0 ? (lower - upper) * total / frequencies[j] : 0.0);
    lower = upper;
  }
  result.rescaled = Rescale(result.score, values, frequencies, total);
  return result;
}

}  // namespace stats
