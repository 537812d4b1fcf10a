#include "engine/stats/Multivariate.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <Eigen/Cholesky>

#include "engine/stats/Distributions.h"
#include "engine/stats/MomentSums.h"

namespace stats {

namespace {

using Eigen::MatrixXd;
using Eigen::VectorXd;

static_assert(kSegmentCases % kMostRowsAtOnce == 0, "rows are multiplied in full tiles");

// Third moments are sums of (z_a z_b) z_c with a <= b <= c. The pairs (a, b) are the rows of a
// table and the c its columns. Four consecutive b share their columns, which begin at the first of
// these b; their rows are filled up to a multiple of four.
constexpr int kQuad = 4;

int QuadRows(int p, int quad) {
  int rows = 0;
  for (int b = quad * kQuad; b < std::min(p, (quad + 1) * kQuad); ++b) rows += b + 1;
  return (rows + kQuad - 1) / kQuad * kQuad;
}

int QuadColumns(int p) {
  return (p + kQuad - 1) / kQuad * kQuad;
}

std::int64_t RowsBefore(int p, int quad) {
  std::int64_t rows = 0;
  for (int earlier = 0; earlier < quad; ++earlier) rows += QuadRows(p, earlier);
  return rows;
}

std::int64_t ThirdMoments(int p) {
  return RowsBefore(p, QuadColumns(p) / kQuad) * PaddedLanes(p);
}

// What the second pass collects.
struct Sums {
  void Merge(const Sums& other) {
    third.Add(other.third);
    distances4 += other.distances4;
    n += other.n;
    cases += other.cases;
  }

  CAlignedBuffer third;   // sum of w z_a z_b z_c, rows: pairs a and b, columns: c
  double distances4 = 0;  // sum of w |z|^4
  double n = 0;
  std::int64_t cases = 0;
};

// Whitens segments and adds them up; holds the buffers that this takes.
class CGroup {
 public:
  CGroup(const VectorXd& mean, const RowMatrix& whitening)
      : mean_(mean),
        p_(static_cast<int>(mean.size())),
        panels_(PaddedLanes(p_) / kLanes),
        centered_(kSegmentCases * panels_ * kLanes),
        whiteningColumns_(static_cast<std::int64_t>(p_) * panels_ * kLanes),
        cells_(kSegmentCases * panels_ * kLanes),
        white_(cells_.Data(), kSegmentCases, panels_ * kLanes),
        byVariable_(static_cast<std::int64_t>(p_) * kChunkCases),
        products_(kMostRowsAtOnce * kChunkCases) {
    sums_.third = CAlignedBuffer(ThirdMoments(p_));
    const Eigen::Index stride = whitening.cols();
    for (Eigen::Index j = 0; j < p_; ++j) {
      for (Eigen::Index i = j; i < p_; ++i) {
        whiteningColumns_.Data()[j * stride + i] = whitening(i, j);
      }
    }
  }

  void Add(const CSegment& segment) {
    Whiten(segment);
    AddDistances(segment);
    for (std::int64_t from = 0; from < segment.Cases(); from += kChunkCases) {
      AddThird(segment, from, std::min(kChunkCases, segment.Cases() - from));
    }
    sums_.cases += segment.Cases();
  }

  const Sums& Result() const { return sums_; }

 private:
  void Whiten(const CSegment& segment);
  void AddDistances(const CSegment& segment);
  void AddThird(const CSegment& segment, std::int64_t from, std::int64_t cases);
  void AddQuad(int quad, std::int64_t from, std::int64_t cases, double* result);
  std::int64_t ColumnsFrom(std::int64_t first) const;
  void Turn(std::int64_t from, std::int64_t cases);

  // So many cases of some thirty variables stay in the inner caches, both ways round, and the
  // tiles of third moments are not read too often.
  static constexpr std::int64_t kChunkCases = 128;

  const VectorXd& mean_;
  int p_, panels_;
  CAlignedBuffer centered_;          // case after case, padded to whole panels
  CAlignedBuffer whiteningColumns_;  // the whitening matrix, column after column, padded likewise
  CAlignedBuffer cells_;
  Eigen::Map<RowMatrix> white_;  // the same whitened, in `cells_`
  CAlignedBuffer byVariable_;    // a chunk of whitened cases, variable after variable
  CAlignedBuffer products_;      // of some pairs of variables
  Sums sums_;
};

void CGroup::Whiten(const CSegment& segment) {
  for (int panel = 0; panel < panels_; ++panel) {
    double mean[kLanes] = {};
    for (int l = 0; l < std::min(kLanes, p_ - panel * kLanes); ++l)
      mean[l] = mean_[panel * kLanes + l];
    const double* from = segment.Panel(panel);
    for (std::int64_t k = 0; k < segment.Cases(); ++k) {
      double* to = centered_.Data() + (k * panels_ + panel) * kLanes;
      for (int l = 0; l < kLanes; ++l) to[l] = from[k * kLanes + l] - mean[l];
    }
  }
  // The matrix is lower triangular: a panel of results needs no variables behind it.
  const Kernels& kernels = ActiveKernels();
  const std::int64_t stride = white_.cols();
  white_.setZero();
  for (std::int64_t k = 0; k < segment.Cases(); k += kMostRowsAtOnce) {
    for (int panel = 0; panel < panels_; ++panel) {
      kernels.multiplyRows(centered_.Data() + k * stride, stride, kMostRowsAtOnce,
                           whiteningColumns_.Data() + panel * kLanes, kLanes,
                           std::min<std::int64_t>(p_, (panel + 1) * kLanes),
                           &white_(k, panel * kLanes), stride);
    }
  }
}

void CGroup::AddDistances(const CSegment& segment) {
  for (std::int64_t k = 0; k < segment.Cases(); ++k) {
    const double squared = white_.row(k).squaredNorm();
    sums_.distances4 += segment.Weights()[k] * squared * squared;
    sums_.n += segment.Weights()[k];
  }
}

void CGroup::Turn(std::int64_t from, std::int64_t cases) {
  for (int j = 0; j < p_; ++j) {
    double* const to = byVariable_.Data() + j * kChunkCases;
    for (std::int64_t k = 0; k < cases; ++k) to[k] = white_(from + k, j);
  }
}

void CGroup::AddThird(const CSegment& segment, std::int64_t from, std::int64_t cases) {
  Turn(from, cases);
  // The columns carry the weights.
  if (segment.Weighted()) {
    for (std::int64_t k = from; k < from + cases; ++k) white_.row(k) *= segment.Weights()[k];
  }
  for (int quad = 0; quad * kQuad < p_; ++quad) {
    AddQuad(quad, from, cases, sums_.third.Data() + RowsBefore(p_, quad) * white_.cols());
  }
}

// Whole vectors where the padding has room for them, and zeros in it.
std::int64_t CGroup::ColumnsFrom(std::int64_t first) const {
  const std::int64_t columns = QuadColumns(p_) - first;
  const std::int64_t whole = (columns + kLanes - 1) / kLanes * kLanes;
  return first + whole <= white_.cols() ? whole : columns;
}

void CGroup::AddQuad(int quad, std::int64_t from, std::int64_t cases, double* result) {
  const Kernels& kernels = ActiveKernels();
  const std::int64_t stride = white_.cols();
  const int firstColumn = quad * kQuad;
  const std::int64_t columns = ColumnsFrom(firstColumn);
  int filled = 0;
  const auto flush = [&] {
    const std::int64_t rows = filled <= kRowsAtOnce ? kRowsAtOnce : kMostRowsAtOnce;
    kernels.multiplyRows(products_.Data(), kChunkCases, rows, &white_(from, firstColumn), columns,
                         cases, result + firstColumn, stride);
    result += rows * stride;
    filled = 0;
  };
  for (int b = firstColumn; b < std::min(p_, firstColumn + kQuad); ++b) {
    const double* const second = byVariable_.Data() + b * kChunkCases;
    for (int a = 0; a <= b; ++a) {
      const double* const first = byVariable_.Data() + a * kChunkCases;
      double* const product = products_.Data() + filled * kChunkCases;
      kernels.product(first, second, cases, product);
      if (++filled == kMostRowsAtOnce) flush();
    }
  }
  if (filled > 0) flush();  // what is left of earlier products goes into rows that nobody reads
}

// The sum over all a, b, c of the squared third moments, from those with a <= b <= c.
double SumOfSquares(const Sums& sums, int p) {
  double total = 0;
  const std::int64_t stride = PaddedLanes(p);
  for (int b = 0; b < p; ++b) {
    const int quad = b / kQuad;
    std::int64_t row = RowsBefore(p, quad);
    for (int earlier = quad * kQuad; earlier < b; ++earlier) row += earlier + 1;
    const double* const moments = sums.third.Data() + row * stride;
    for (int a = 0; a <= b; ++a) {
      for (int c = b; c < p; ++c) {
        const double orders = a == b && b == c ? 1 : (a == b || b == c ? 3 : 6);
        const double moment = moments[a * stride + c] / sums.n;
        total += orders * moment * moment;
      }
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
  int threads = 1;
  EStatus status = EStatus::Ok;
  VectorXd mean;
  RowMatrix whitening;  // whitening * covariance * whitening' = identity; padded with zeros
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
  const VectorXd sd = covariance.sd * std::sqrt((n - 1) / n);
  const MatrixXd inverse = factor.matrixL().solve(MatrixXd::Identity(p, p));
  state.whitening.setZero(PaddedLanes(p), PaddedLanes(p));
  state.whitening.topLeftCorner(p, p) = inverse * sd.cwiseInverse().asDiagonal();
  state.mean = covariance.mean;
  state.sums.third = CAlignedBuffer(ThirdMoments(p));
}

CMardia::CMardia(std::unique_ptr<State> state) : state_(std::move(state)) {}

CMardia CMardia::WithoutCases() const {
  auto state = std::make_unique<State>();
  state->status = state_->status;
  state->mean = state_->mean;
  state->whitening = state_->whitening;
  if (state->status == EStatus::Ok) state->sums.third = CAlignedBuffer(state_->sums.third.Count());
  return CMardia(std::move(state));
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
      [&] { return CGroup(state.mean, state.whitening); },
      [](CGroup& group, CSegment& segment) { group.Add(segment); },
      [&](const CGroup& group) { state.sums.Merge(group.Result()); });
}

void CMardia::Merge(const CMardia& other) {
  if (other.state_->mean != state_->mean || other.state_->whitening != state_->whitening)
    throw std::invalid_argument("cases with other moments cannot be merged");
  if (state_->status == EStatus::Ok) state_->sums.Merge(other.state_->sums);
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
  result.skewness = SumOfSquares(sums, result.p);
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
