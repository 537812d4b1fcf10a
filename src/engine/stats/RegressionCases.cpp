#include "engine/stats/RegressionCases.h"

#include <cmath>

#include <Eigen/Cholesky>

#include "engine/stats/CrossProducts.h"
#include "engine/stats/Parallel.h"

namespace stats {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

namespace {

MatrixXd Correlations(const CQuadMatrix& centred) {
  MatrixXd correlation(centred.Size(), centred.Size());
  for (int i = 0; i < centred.Size(); ++i) {
    for (int j = 0; j < centred.Size(); ++j) {
      const Quad squares = SquareRoot(centred(i, i)) * SquareRoot(centred(j, j));
      correlation(i, j) = static_cast<double>(centred(i, j) / squares);
    }
  }
  return correlation;
}

}  // namespace

RegressorScale ScaleRegressors(const RegressionPass& pass, int x, int threads) {
  RegressorScale scale;
  CCrossProducts sums(x, threads);
  scale.stopped = !pass([&sums](const RegressionBlock& block) { sums.Add(block.x); });
  scale.n = static_cast<double>(sums.N());
  if (scale.stopped || sums.Cases() == 0) return scale;
  scale.status = !sums.Finite()       ? EStatus::NotFinite
                 : !(scale.n > 0)     ? EStatus::ZeroWeights
                 : !(scale.n > x + 1) ? EStatus::TooFewCases
                                      : EStatus::Ok;
  if (scale.status != EStatus::Ok) return scale;
  scale.mean.resize(x);
  scale.sd.resize(x);
  CQuadMatrix centred(x);
  for (int i = 0; i < x; ++i) {
    for (int j = 0; j < x; ++j) centred(i, j) = sums.Centred(i, j);
    scale.mean(i) = static_cast<double>(sums.Mean(i));
    scale.sd(i) = std::sqrt(static_cast<double>(centred(i, i) / (sums.N() - 1)));
    scale.status = sums.CheckSpread(i);
    if (scale.status == EStatus::Ok) continue;
    scale.variable = i;
    return scale;
  }
  // Newton's method works with 16 digits.
  constexpr double kCollinear = 1e-13;
  const CQuadCholesky factor(centred, kCollinear);
  scale.smallestPivot = factor.SmallestPivot();
  scale.correlation = Correlations(centred);
  if (factor.Failed() < 0) return scale;
  scale.status = EStatus::NotPositiveDefinite;
  scale.variable = factor.Failed();
  return scale;
}

CLikelihoodPass::CLikelihoodPass(const RegressorScale& scale, bool constant, int others,
                                 int threads)
    : mean_(scale.mean),
      inverseSd_(scale.sd.cwiseInverse()),
      constant_(constant),
      columns_(static_cast<int>(scale.mean.size()) + (constant ? 1 : 0)),
      others_(others),
      threads_(threads) {}

LikelihoodSums CLikelihoodPass::Empty() const {
  const Index all = columns_ + others_;
  return {0, VectorXd::Zero(all), MatrixXd::Zero(all, all)};
}

void CLikelihoodPass::ForPieces(std::int64_t pieces,
                                const std::function<void(std::int64_t)>& work) const {
  ParallelFor(threads_, pieces, work);
}

void CLikelihoodPass::Standardise(const CaseBlock& block, std::int64_t first, std::int64_t cases,
                                  const VectorXd& slopes, Chunk& chunk) const {
  const std::int64_t stride = PaddedLanes(columns_);
  if (chunk.x.rows() == 0) {
    chunk.x.setZero(kChunkCases, columns_);
    chunk.mixed.setZero(kChunkCases, others_);
    chunk.slope.setZero(kChunkCases);
    chunk.curve.setZero(kChunkCases);
    chunk.cases = CAlignedBuffer(kChunkCases * stride);
    chunk.scaled = CAlignedBuffer(kChunkCases * stride);
    chunk.products = CAlignedBuffer(stride * stride);
    if (constant_) {
      chunk.x.col(columns_ - 1).setOnes();
      for (std::int64_t k = 0; k < kChunkCases; ++k) {
        chunk.cases.Data()[k * stride + columns_ - 1] = 1;
      }
    }
  }
  const auto count = static_cast<std::int64_t>(mean_.size());
  for (std::int64_t k = 0; k < cases; ++k) {
    const double* const from = block.cells + (first + k) * block.stride;
    double* const row = chunk.cases.Data() + k * stride;
    for (std::int64_t j = 0; j < count; ++j) row[j] = (from[j] - mean_(j)) * inverseSd_(j);
  }
  for (std::int64_t j = 0; j < count; ++j) {
    double* const to = chunk.x.col(j).data();
    const double* const from = chunk.cases.Data() + j;
    for (std::int64_t k = 0; k < cases; ++k) to[k] = from[k * stride];
  }
  chunk.mixed.setZero();
  chunk.predictor.noalias() = chunk.x * slopes;
}

void CLikelihoodPass::AddCase(const CaseLikelihood& one, double weight, std::int64_t k,
                              Chunk& chunk, LikelihoodSums& sums) const {
  sums.value += weight * one.value;
  chunk.slope(k) = weight * one.slope;
  chunk.curve(k) = weight * one.curve;
  for (int o = 0; o < 2; ++o) {
    if (one.other[o] < 0) continue;
    const Index at = columns_ + one.other[o];
    sums.gradient(at) += weight * one.otherSlope[o];
    sums.hessian(at, at) += weight * one.otherCurve[o == 0 ? 0 : 2];
    chunk.mixed(k, one.other[o]) = weight * one.mixed[o];
  }
  if (one.other[0] < 0 || one.other[1] < 0) return;
  const Index a = columns_ + one.other[0];
  const Index b = columns_ + one.other[1];
  sums.hessian(a, b) += weight * one.otherCurve[1];
  sums.hessian(b, a) += weight * one.otherCurve[1];
}

void CLikelihoodPass::AddChunk(Chunk& chunk, std::int64_t cases, LikelihoodSums& sums) const {
  const auto x = chunk.x.topRows(cases);
  sums.gradient.head(columns_).noalias() += x.transpose() * chunk.slope.head(cases);
  AddProducts(chunk, cases, sums);
  if (others_ == 0) return;
  const MatrixXd mixed = x.transpose() * chunk.mixed.topRows(cases);
  sums.hessian.topRightCorner(columns_, others_) += mixed;
  sums.hessian.bottomLeftCorner(others_, columns_) += mixed.transpose();
}

// The lower triangle of x' curve x, in tiles of rows.
void CLikelihoodPass::AddProducts(Chunk& chunk, std::int64_t cases, LikelihoodSums& sums) const {
  const Kernels& kernels = ActiveKernels();
  const std::int64_t stride = PaddedLanes(columns_);
  for (std::int64_t j = 0; j < columns_; ++j) {
    kernels.product(chunk.curve.data(), chunk.x.col(j).data(), cases,
                    chunk.scaled.Data() + j * kChunkCases);
  }
  chunk.products.Clear();
  for (std::int64_t row = 0; row < columns_; row += kRowsAtOnce) {
    kernels.multiplyRows(chunk.scaled.Data() + row * kChunkCases, kChunkCases, kRowsAtOnce,
                         chunk.cases.Data(), row + kRowsAtOnce, cases,
                         chunk.products.Data() + row * stride, stride);
  }
  for (std::int64_t i = 0; i < columns_; ++i) {
    for (std::int64_t j = 0; j <= i; ++j) {
      const double product = chunk.products.Data()[i * stride + j];
      sums.hessian(i, j) += product;
      if (i != j) sums.hessian(j, i) += product;
    }
  }
}

NewtonResult MaximiseLikelihood(
    VectorXd start, double n,
    const std::function<bool(const VectorXd&, LikelihoodSums&)>& evaluate) {
  constexpr int kMostIterations = 100;
  constexpr int kMostHalvings = 40;
  constexpr double kSmallGradient = 1e-13;
  NewtonResult result;
  result.parameters = std::move(start);
  if (!evaluate(result.parameters, result.sums)) {
    result.stopped = true;
    return result;
  }
  LikelihoodSums next;
  for (result.iterations = 1; result.iterations <= kMostIterations; ++result.iterations) {
    const LikelihoodSums& at = result.sums;
    if (!std::isfinite(at.value)) return result;
    const double largest = at.gradient.cwiseAbs().maxCoeff() / n;
    if (largest <= kSmallGradient) break;
    const Eigen::LDLT<MatrixXd> factor(-at.hessian);
    if (factor.info() != Eigen::Success || !factor.isPositive()) break;
    VectorXd step = factor.solve(at.gradient);
    if (!step.allFinite()) break;
    // A likelihood that hardly rises while the parameters run on has no maximum.
    const double rise = at.gradient.dot(step);
    Index runaway = 0;
    const double length = step.cwiseAbs().maxCoeff(&runaway);
    constexpr double kHardlyRises = 1e-6;
    constexpr double kRunsOn = 0.1;
    constexpr int kFirstGlance = 6;
    if (result.iterations > kFirstGlance && rise < kHardlyRises * n && length > kRunsOn) {
      result.status = EStatus::Boundary;
      result.runaway = static_cast<int>(runaway);
      return result;
    }
    bool better = false;
    for (int halvings = 0; halvings < kMostHalvings && !better; ++halvings, step /= 2) {
      const VectorXd parameters = result.parameters + step;
      if (!evaluate(parameters, next)) {
        result.stopped = true;
        return result;
      }
      // At the end rounding decides about the value, and the gradient about the rest.
      const double rounding = 1e-13 * std::fabs(at.value);
      better = std::isfinite(next.value) &&
               (next.value > at.value + rounding ||
                (next.value > at.value - rounding &&
                 next.gradient.cwiseAbs().maxCoeff() / n < 0.999 * largest));
      if (better) result.parameters = parameters;
      if (!better && largest < 1e-11) break;
    }
    if (!better) break;
    std::swap(result.sums, next);
  }
  // Without a maximum the gradient vanishes too: the last step then stays long, or every case is
  // predicted with certainty.
  constexpr double kCertain = 1e-6;
  constexpr double kLongStep = 1e-3;
  const VectorXd last = (-result.sums.hessian).ldlt().solve(result.sums.gradient);
  const bool certain = result.sums.value > -kCertain * n && result.sums.value <= 0;
  if (certain || !last.allFinite() || last.cwiseAbs().maxCoeff() > kLongStep) {
    Index runaway = 0;
    result.parameters.cwiseAbs().maxCoeff(&runaway);
    result.runaway = static_cast<int>(runaway);
    result.status = EStatus::Boundary;
    return result;
  }
  constexpr double kEnough = 1e-9;
  if (result.sums.gradient.cwiseAbs().maxCoeff() / n <= kEnough) result.status = EStatus::Ok;
  return result;
}

}  // namespace stats
