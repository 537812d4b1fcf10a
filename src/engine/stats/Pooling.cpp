#include "engine/stats/Pooling.h"

#include <cmath>
#include <limits>
#include <numeric>

#include "engine/stats/Distributions.h"

namespace stats {

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();

double DegreesOfFreedom(double m, double share, double completeDf) {
  const double large = share > 0 ? (m - 1) / (share * share) : kInfinite;
  if (!std::isfinite(completeDf)) return large;
  const double observed = (completeDf + 1) / (completeDf + 3) * completeDf * (1 - share);
  return 1 / (1 / large + 1 / observed);
}

}  // namespace

PooledEstimate PoolEstimates(const std::vector<double>& values, const std::vector<double>& errors,
                             double completeDf, double confidence) {
  PooledEstimate pooled;
  const auto m = static_cast<double>(values.size());
  pooled.value = std::accumulate(values.begin(), values.end(), 0.0) / m;
  for (std::size_t i = 0; i < values.size(); ++i) {
    pooled.within += errors[i] * errors[i] / m;
    if (m > 1) {
      pooled.between += (values[i] - pooled.value) * (values[i] - pooled.value) / (m - 1);
    }
  }
  const double extra = (1 + 1 / m) * pooled.between;
  const double total = pooled.within + extra;
  pooled.error = std::sqrt(total);
  pooled.df = DegreesOfFreedom(m, total > 0 ? extra / total : 0, completeDf);
  if (pooled.within > 0) {
    pooled.increase = extra / pooled.within;
    if (extra > 0) {
      pooled.missingInformation = (pooled.increase + 2 / (pooled.df + 3)) / (pooled.increase + 1);
    }
  }
  const double reach = StudentQuantile((1 + confidence) / 2, pooled.df) * pooled.error;
  pooled.low = pooled.value - reach;
  pooled.high = pooled.value + reach;
  if (total > 0) {
    pooled.t = pooled.value / pooled.error;
    pooled.p = StudentTwoSided(pooled.t, pooled.df);
  }
  return pooled;
}

}  // namespace stats
