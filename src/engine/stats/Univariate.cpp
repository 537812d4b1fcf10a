#include "engine/stats/Univariate.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include "engine/stats/Segments.h"

namespace stats {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Sums of one variable. The mean is counted from its origin, s2 to s4 are sums of powers about it.
struct Sums {
  double cases = 0, n = 0, mean = 0, s2 = 0, s3 = 0, s4 = 0;
  double minimum = kInfinity, maximum = -kInfinity;
  double atMinimum = 0, atMaximum = 0;

  void Merge(const Sums& other);
  void MergeRange(const Sums& other);
};

void Sums::MergeRange(const Sums& other) {
  if (other.minimum < minimum) {
    minimum = other.minimum;
    atMinimum = other.atMinimum;
  } else if (other.minimum == minimum) {
    atMinimum += other.atMinimum;
  }
  if (other.maximum > maximum) {
    maximum = other.maximum;
    atMaximum = other.atMaximum;
  } else if (other.maximum == maximum) {
    atMaximum += other.atMaximum;
  }
}

void Sums::Merge(const Sums& b) {
  if (b.n == 0) return;
  if (n == 0) {
    *this = b;
    return;
  }
  const double total = n + b.n;
  const double delta = b.mean - mean;
  const double step = delta / total;
  const double cross = n * b.n * delta * step;  // n_a n_b delta^2 / n
  s4 += b.s4 + cross * step * step * (n * n - n * b.n + b.n * b.n) +
        6 * step * step * (n * n * b.s2 + b.n * b.n * s2) + 4 * step * (n * b.s3 - b.n * s3);
  s3 += b.s3 + cross * step * (n - b.n) + 3 * step * (n * b.s2 - b.n * s2);
  s2 += b.s2 + cross;
  mean += b.n * step;
  n = total;
  cases += b.cases;
  MergeRange(b);
}

// The sums of one lane. `powers` are about `center`, the rounded mean; its error is taken out.
Sums LaneSums(const PanelSums& sums, const PanelPowers& powers, double center, int lane) {
  Sums lanes;
  if (!(sums.weight[lane] > 0)) return lanes;
  const double n = sums.weight[lane];
  const double e = powers.power[0][lane] / n;
  const double s2 = powers.power[1][lane], s3 = powers.power[2][lane];
  lanes.cases = sums.cases[lane];
  lanes.n = n;
  lanes.mean = center + e;
  lanes.s2 = s2 - n * e * e;
  lanes.s3 = s3 - 3 * e * s2 + 2 * n * e * e * e;
  lanes.s4 = powers.power[3][lane] - 4 * e * s3 + 6 * e * e * s2 - 3 * n * e * e * e * e;
  lanes.minimum = sums.minimum[lane];
  lanes.maximum = sums.maximum[lane];
  lanes.atMinimum = powers.atMinimum[lane];
  lanes.atMaximum = powers.atMaximum[lane];
  return lanes;
}

struct AllSums {
  std::vector<Sums> variables;
  std::int64_t cases = 0, withoutWeight = 0;

  void Add(const CSegment& segment, const COrigins& origins);
  void Merge(const AllSums& other);
};

void AllSums::Add(const CSegment& segment, const COrigins& origins) {
  const Kernels& kernels = ActiveKernels();
  PanelSums sums;
  PanelPowers powers;
  alignas(kAlignment) double center[kLanes];
  for (int panel = 0; panel < segment.Panels(); ++panel) {
    kernels.sum(segment.Panel(panel), segment.Weights(), segment.Cases(), origins.Panel(panel),
                sums);
    for (int l = 0; l < kLanes; ++l)
      center[l] = sums.weight[l] > 0 ? sums.sum[l] / sums.weight[l] : 0.0;
    kernels.powers(segment.Panel(panel), segment.Weights(), segment.Cases(), origins.Panel(panel),
                   center, sums, powers);
    const int lanes = std::min(kLanes, segment.Variables() - panel * kLanes);
    for (int l = 0; l < lanes; ++l) {
      variables[static_cast<std::size_t>(panel * kLanes + l)].Merge(
          LaneSums(sums, powers, center[l], l));
    }
  }
  cases += segment.Cases() + segment.Incomplete();
  withoutWeight += segment.WithoutWeight();
}

void AllSums::Merge(const AllSums& other) {
  for (std::size_t j = 0; j < variables.size(); ++j) variables[j].Merge(other.variables[j]);
  cases += other.cases;
  withoutWeight += other.withoutWeight;
}

void FillShape(const Sums& sums, UnivariateResult& result) {
  const double n = sums.n;
  result.m2 = sums.s2 / n;
  result.m3 = sums.s3 / n;
  result.m4 = sums.s4 / n;
  result.g1 = result.m3 / (result.m2 * std::sqrt(result.m2));
  result.g2 = result.m4 / (result.m2 * result.m2) - 3;
  if (n > 2) result.G1 = result.g1 * std::sqrt(n * (n - 1)) / (n - 2);
  if (n > 3) result.G2 = (n - 1) * ((n + 1) * result.g2 + 6) / ((n - 2) * (n - 3));
  result.b1 = result.m3 / (result.variance * result.sd);
  result.b2 = result.m4 / (result.variance * result.variance) - 3;
}

}  // namespace

struct CUnivariate::State {
  EDeletion deletion;
  int threads;
  COrigins origins;
  AllSums sums;
};

CUnivariate::CUnivariate(int variables, EDeletion deletion, int threads)
    : state_(new State{deletion, threads, COrigins(variables), {}}) {
  state_->sums.variables.resize(static_cast<std::size_t>(variables));
}
CUnivariate::~CUnivariate() = default;
CUnivariate::CUnivariate(CUnivariate&&) noexcept = default;
CUnivariate& CUnivariate::operator=(CUnivariate&&) noexcept = default;

void CUnivariate::Add(const CaseBlock& block) {
  const std::size_t variables = state_->sums.variables.size();
  CheckShape(block, static_cast<int>(variables));
  state_->origins.Find(block);
  SumInGroups<AllSums>(
      block, state_->deletion, state_->threads,
      [&] {
        AllSums sums;
        sums.variables.resize(variables);
        return sums;
      },
      [&](AllSums& sums, CSegment& segment) { sums.Add(segment, state_->origins); },
      [&](const AllSums& sums) { state_->sums.Merge(sums); });
}

void CUnivariate::Merge(const CUnivariate& other) {
  if (other.state_->sums.variables.size() != state_->sums.variables.size())
    throw std::invalid_argument("sums of different variables cannot be merged");
  state_->origins.Adopt(other.state_->origins);
  AllSums moved = other.state_->sums;
  for (std::size_t j = 0; j < moved.variables.size(); ++j) {
    const int variable = static_cast<int>(j);
    moved.variables[j].mean += other.state_->origins.At(variable) - state_->origins.At(variable);
  }
  state_->sums.Merge(moved);
}

UnivariateResult CUnivariate::Result(int variable) const {
  const AllSums& all = state_->sums;
  const Sums& sums = all.variables.at(static_cast<std::size_t>(variable));
  UnivariateResult result;
  result.cases = static_cast<std::int64_t>(sums.cases);
  result.missing = all.cases - result.cases;
  if (sums.n == 0) {
    result.status =
        all.cases == 0 && all.withoutWeight > 0 ? EStatus::ZeroWeights : EStatus::NoCases;
    return result;
  }
  if (!std::isfinite(sums.n) || !std::isfinite(sums.minimum) || !std::isfinite(sums.maximum)) {
    result.status = EStatus::NotFinite;
    return result;
  }
  result.n = sums.n;
  result.mean = state_->origins.At(variable) + sums.mean;
  result.minimum = sums.minimum;
  result.maximum = sums.maximum;
  result.minimumFrequency = sums.atMinimum;
  result.maximumFrequency = sums.atMaximum;
  if (!(sums.n > 1)) {
    result.status = EStatus::TooFewCases;
  } else if (sums.minimum == sums.maximum) {
    result.mean = sums.minimum;  // free of the rounding of a mean
    result.status = EStatus::Constant;
  } else {
    result.status = EStatus::Ok;
    result.variance = sums.s2 / (sums.n - 1);
    result.sd = std::sqrt(result.variance);
    FillShape(sums, result);
    // Numbers so large or so close that a power leaves the range of a double.
    if (!std::isfinite(result.g2) || !std::isfinite(result.variance)) {
      result = UnivariateResult();
      result.status = EStatus::NotFinite;
    }
  }
  return result;
}

UnivariateResult DescribeColumn(const double* values, std::int64_t cases, const double* weights) {
  CUnivariate univariate(1, EDeletion::Pairwise);
  univariate.Add({values, cases, 1, 1, weights});
  return univariate.Result(0);
}

}  // namespace stats
