#include "engine/stats/Resampling.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "engine/stats/Distributions.h"

namespace stats {

CResampler::CResampler(const std::vector<double>& weights) : cases_(weights.size()) {
  if (weights.empty() || weights.size() > std::numeric_limits<std::uint32_t>::max())
    throw std::invalid_argument("there are no cases to draw from, or too many");
  for (const double weight : weights) {
    if (!(weight > 0) || !std::isfinite(weight))
      throw std::invalid_argument("a case is drawn by a weight above 0");
    n_ += weight;
  }
  const bool equal = std::all_of(weights.begin(), weights.end(),
                                 [&](double weight) { return weight == weights.front(); });
  if (equal) return;
  // Places with less than their share are filled up by those with more.
  keep_.resize(cases_);
  alias_.resize(cases_);
  std::vector<std::uint32_t> less, more;
  for (std::size_t i = 0; i < cases_; ++i) {
    keep_[i] = weights[i] / n_ * static_cast<double>(cases_);
    alias_[i] = static_cast<std::uint32_t>(i);
    (keep_[i] < 1 ? less : more).push_back(static_cast<std::uint32_t>(i));
  }
  while (!less.empty() && !more.empty()) {
    const std::uint32_t small = less.back(), large = more.back();
    less.pop_back();
    alias_[small] = large;
    keep_[large] -= 1 - keep_[small];
    if (keep_[large] >= 1) continue;
    more.pop_back();
    less.push_back(large);
  }
  // What rounding left over.
  for (const std::uint32_t i : less) keep_[i] = 1;
}

void CResampler::Draw(std::int64_t draws, CSampleStream random, std::vector<double>& counts) const {
  counts.assign(cases_, 0.0);
  const auto cases = static_cast<double>(cases_);
  if (keep_.empty()) {
    for (std::int64_t k = 0; k < draws; ++k)
      ++counts[static_cast<std::size_t>(random.Uniform() * cases)];
    return;
  }
  for (std::int64_t k = 0; k < draws; ++k) {
    const auto place = static_cast<std::size_t>(random.Uniform() * cases);
    ++counts[random.Uniform() < keep_[place] ? place : alias_[place]];
  }
}

namespace {

double QuantileOf(const std::vector<double>& sorted, double share) {
  const double place = share * (static_cast<double>(sorted.size()) + 1) - 1;
  if (!(place > 0)) return sorted.front();
  const auto below = static_cast<std::size_t>(place);
  if (below + 1 >= sorted.size()) return sorted.back();
  return sorted[below] + (place - static_cast<double>(below)) * (sorted[below + 1] - sorted[below]);
}

}  // namespace

BootstrapSummary SummariseSamples(double estimate, std::vector<double> values, double scale,
                                  double level) {
  BootstrapSummary summary;
  if (values.size() < 2) return summary;
  const bool finite =
      std::isfinite(estimate) &&
      std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
  if (!finite) {
    summary.status = EStatus::NotFinite;
    return summary;
  }
  const auto count = static_cast<double>(values.size());
  double below = 0, sum = 0, squares = 0;
  for (double& value : values) {
    below += value < estimate ? 1 : value == estimate ? 0.5 : 0;
    value -= estimate;
    sum += value;
  }
  const double mean = sum / count;
  for (const double value : values) squares += (value - mean) * (value - mean);
  summary.status = EStatus::Ok;
  summary.mean = estimate + mean;
  summary.bias = scale * scale * mean;
  summary.standardError = scale * std::sqrt(squares / (count - 1));
  std::sort(values.begin(), values.end());
  const auto interval = [&](double z0) {
    const auto end = [&](double share) {
      const double moved = z0 == 0 ? share : NormalCdf(2 * z0 + NormalQuantile(share));
      return estimate + scale * QuantileOf(values, moved);
    };
    return Interval{end((1 - level) / 2), end((1 + level) / 2)};
  };
  summary.percentile = interval(0);
  summary.hasCorrected = below > 0 && below < count;
  if (summary.hasCorrected) summary.corrected = interval(NormalQuantile(below / count));
  return summary;
}

}  // namespace stats
