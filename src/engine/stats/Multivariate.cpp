#include "engine/stats/Multivariate.h"

#include <cmath>
#include <stdexcept>

#include <Eigen/Cholesky>

#include "engine/stats/Distributions.h"
#include "engine/stats/MomentSums.h"

namespace stats {

namespace {

using Eigen::MatrixXd;
using Eigen::VectorXd;

// All pairs a <= b of the variables, by b: eight of them make a panel of products, which needs
// only the columns c >= b of its first pair for the third moments of a <= b <= c.
struct PairOfVariables {
  int a, b;
};

std::vector<PairOfVariables> AllPairs(int p) {
  std::vector<PairOfVariables> pairs;
  for (int b = 0; b < p; ++b) {
    for (int a = 0; a <= b; ++a) pairs.push_back({a, b});
  }
  return pairs;
}

std::int64_t ThirdMoments(int p) {
  return static_cast<std::int64_t>(PaddedLanes(p * (p + 1) / 2)) * PaddedLanes(p);
}

// What the second pass collects.
struct Sums {
  CAlignedBuffer third;   // sum of w z_a z_b z_c, rows: pairs, columns: c
  double distances4 = 0;  // sum of w |z|^4
  double n = 0;
  std::int64_t cases = 0;
};

// Whitens segments and adds them up; holds the buffers that this takes.
class CGroup {
 public:
  CGroup(const VectorXd& mean, const RowMatrix& whitening,
         const std::vector<PairOfVariables>& pairs)
      : mean_(mean),
        whitening_(whitening),
        pairs_(pairs),
        p_(static_cast<int>(mean.size())),
        stride_(PaddedLanes(p_)),
        columns_(stride_ * kSegmentCases),
        products_(kLanes * kSegmentCases) {
    sums_.third = CAlignedBuffer(ThirdMoments(p_));
  }

  void Add(CSegment& segment) {
    Whiten(segment);
    AddDistances(segment);
    for (std::size_t first = 0; first < pairs_.size(); first += kLanes) AddThird(segment, first);
    sums_.cases += segment.Cases();
  }

  const Sums& Result() const { return sums_; }

 private:
  void Whiten(const CSegment& segment);
  void AddDistances(const CSegment& segment);
  void AddThird(const CSegment& segment, std::size_t first);
  void FillProducts(const CSegment& segment, std::size_t first);
  double* Column(int j) {
    return columns_.Data() + j / kLanes * kSegmentCases * kLanes + j % kLanes;
  }

  const VectorXd& mean_;
  const RowMatrix& whitening_;
  const std::vector<PairOfVariables>& pairs_;
  int p_, stride_;
  RowMatrix centered_, white_;
  CAlignedBuffer columns_;   // panels of whitened cases
  CAlignedBuffer products_;  // one panel of pairs
  Sums sums_;
};

void CGroup::Whiten(const CSegment& segment) {
  const std::int64_t cases = segment.Cases();
  centered_.resize(cases, p_);
  for (int j = 0; j < p_; ++j) {
    const double* from = segment.Panel(j / kLanes) + j % kLanes;
    for (std::int64_t k = 0; k < cases; ++k) centered_(k, j) = from[k * kLanes] - mean_[j];
  }
  white_.noalias() = centered_ * whitening_.transpose().triangularView<Eigen::Upper>();
  for (int j = 0; j < p_; ++j) {
    double* to = Column(j);
    for (std::int64_t k = 0; k < cases; ++k) to[k * kLanes] = white_(k, j);
  }
}

void CGroup::AddDistances(const CSegment& segment) {
  for (std::int64_t k = 0; k < segment.Cases(); ++k) {
    const double squared = white_.row(k).squaredNorm();
    sums_.distances4 += segment.Weights()[k] * squared * squared;
    sums_.n += segment.Weights()[k];
  }
}

void CGroup::FillProducts(const CSegment& segment, std::size_t first) {
  for (std::size_t l = 0; l < kLanes; ++l) {
    double* to = products_.Data() + l;
    if (first + l >= pairs_.size()) {
      for (std::int64_t k = 0; k < segment.Cases(); ++k) to[k * kLanes] = 0;
      continue;
    }
    const double* a = Column(pairs_[first + l].a);
    const double* b = Column(pairs_[first + l].b);
    for (std::int64_t k = 0; k < segment.Cases(); ++k)
      to[k * kLanes] = segment.Weights()[k] * a[k * kLanes] * b[k * kLanes];
  }
}

void CGroup::AddThird(const CSegment& segment, std::size_t first) {
  FillProducts(segment, first);
  for (int column = pairs_[first].b / kLanes * kLanes; column < stride_; column += kLanes) {
    double* to = sums_.third.Data() + static_cast<std::int64_t>(first) * stride_ + column;
    for (int half = 0; half < kLanes; half += 4)
      ActiveKernels().multiply(products_.Data() + half, Column(column), segment.Cases(),
                               to + half * stride_, stride_);
  }
}

// The sum over all a, b, c of the squared third moments, from those with a <= b <= c.
double SumOfSquares(const Sums& sums, const std::vector<PairOfVariables>& pairs, int p) {
  double total = 0;
  const int stride = PaddedLanes(p);
  for (std::size_t row = 0; row < pairs.size(); ++row) {
    for (int c = pairs[row].b; c < p; ++c) {
      const bool same = pairs[row].a == pairs[row].b;
      const bool last = pairs[row].b == c;
      const double orders = same && last ? 1 : (same || last ? 3 : 6);
      const double moment = sums.third.Data()[static_cast<std::int64_t>(row) * stride + c] / sums.n;
      total += orders * moment * moment;
    }
  }
  return total;
}

// The cube root of a chi-square is nearly normal.
double DeviateOf(double chiSquare, double df) {
  const double variance = 2 / (9 * df);
  return (std::cbrt(chiSquare / df) - (1 - variance)) / std::sqrt(variance);
}

}  // namespace

struct CMardia::State {
  int threads;
  EStatus status = EStatus::Ok;
  VectorXd mean;
  RowMatrix whitening;  // lower triangle; whitening * covariance * whitening' = identity
  std::vector<PairOfVariables> pairs;
  Sums sums;
};

CMardia::CMardia(const CMoments& moments, int threads) : state_(std::make_unique<State>()) {
  if (moments.Deletion() != EDeletion::Listwise)
    throw std::invalid_argument("multivariate normality needs complete cases");
  State& state = *state_;
  state.threads = threads;
  const int p = moments.Variables();
  state.mean.setZero(p);
  const MomentMatrix covariance = ComputeMoments(moments, EMoments::Covariance);
  state.status = covariance.status;
  if (state.status != EStatus::Ok) return;
  const double n = moments.N(0, 0);
  if (!(n > p)) {
    state.status = EStatus::TooFewCases;
    return;
  }
  // Judged on the correlations: the units of measurement have no say.
  for (int i = 0; i < p; ++i) {
    if (covariance.sd[i] == 0) state.status = EStatus::NotPositiveDefinite;
  }
  const MomentMatrix correlation = ComputeMoments(moments, EMoments::Correlation);
  if (correlation.status != EStatus::Ok ||
      CheckPositiveDefinite(correlation.matrix).status != EStatus::Ok)
    state.status = EStatus::NotPositiveDefinite;
  if (state.status != EStatus::Ok) return;
  // whitening = inverse of the Cholesky factor of the correlations, times 1 / sd (divisor n).
  const Eigen::LLT<MatrixXd> factor(correlation.matrix);
  state.whitening = factor.matrixL().solve(MatrixXd::Identity(p, p));
  const VectorXd sd = covariance.sd * std::sqrt((n - 1) / n);
  state.whitening = state.whitening * sd.cwiseInverse().asDiagonal();
  state.mean = covariance.mean;
  state.pairs = AllPairs(p);
  state.sums.third = CAlignedBuffer(ThirdMoments(p));
}
CMardia::~CMardia() = default;
CMardia::CMardia(CMardia&&) noexcept = default;
CMardia& CMardia::operator=(CMardia&&) noexcept = default;

void CMardia::Add(const CaseBlock& block) {
  State& state = *state_;
  CheckShape(block, static_cast<int>(state.mean.size()));
  if (state.status != EStatus::Ok) return;
  SumInGroups<CGroup>(
      block, EDeletion::Listwise, state.threads,
      [&] { return CGroup(state.mean, state.whitening, state.pairs); },
      [](CGroup& group, CSegment& segment) { group.Add(segment); },
      [&](const CGroup& group) {
        state.sums.third.Add(group.Result().third);
        state.sums.distances4 += group.Result().distances4;
        state.sums.n += group.Result().n;
        state.sums.cases += group.Result().cases;
      });
}

MardiaResult CMardia::Result() const {
  MardiaResult result;
  const Sums& sums = state_->sums;
  result.status = state_->status;
  result.p = static_cast<int>(state_->mean.size());
  if (result.status == EStatus::Ok && sums.n == 0) result.status = EStatus::NoCases;
  if (result.status != EStatus::Ok) return result;
  const double n = sums.n, p = result.p;
  result.cases = sums.cases;
  result.n = n;
  result.skewness = SumOfSquares(sums, state_->pairs, result.p);
  result.chiSquareSkewness = n * result.skewness / 6;
  result.dfSkewness = p * (p + 1) * (p + 2) / 6;
  result.pSkewness = ChiSquareUpper(result.chiSquareSkewness, result.dfSkewness);
  const double k = (p + 1) * (n + 1) * (n + 3) / (n * ((n + 1) * (p + 1) - 6));
  result.smallSample = result.chiSquareSkewness * k;
  result.pSmallSample = ChiSquareUpper(result.smallSample, result.dfSkewness);
  result.kurtosis = sums.distances4 / n;
  result.expectedKurtosis = p * (p + 2);
  result.zKurtosis =
      (result.kurtosis - result.expectedKurtosis) / std::sqrt(8 * result.expectedKurtosis / n);
  result.pKurtosis = NormalTwoSided(result.zKurtosis);
  result.relativeKurtosis = result.kurtosis / result.expectedKurtosis;
  result.zSkewness = DeviateOf(result.chiSquareSkewness, result.dfSkewness);
  result.chiSquareJoint = result.zSkewness * result.zSkewness + result.zKurtosis * result.zKurtosis;
  result.pJoint = ChiSquareUpper(result.chiSquareJoint, 2);
  return result;
}

std::int64_t CMardia::MemoryFor(int p) {
  constexpr std::int64_t kCopies = 9;  // the groups that are summed at one time, and the total
  return 8 * kCopies * ThirdMoments(p);
}

}  // namespace stats
