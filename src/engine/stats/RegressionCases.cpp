#include "engine/stats/RegressionCases.h"

#include <cmath>

#include <Eigen/Cholesky>

#include "engine/stats/RegressionSurvey.h"

namespace stats {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

CLikelihoodPass::CLikelihoodPass(const RegressorScale& scale, bool constant, int others)
    : mean_(scale.mean),
      inverseSd_(scale.sd.cwiseInverse()),
      constant_(constant),
      columns_(static_cast<int>(scale.mean.size()) + (constant ? 1 : 0)),
      others_(others) {}

LikelihoodSums CLikelihoodPass::Empty() const {
  const Index all = columns_ + others_;
  return {0, VectorXd::Zero(all), MatrixXd::Zero(all, all)};
}

namespace {

std::int64_t WholeTiles(std::int64_t rows) {
  return (rows + kRowsAtOnce - 1) / kRowsAtOnce * kRowsAtOnce;
}

}  // namespace

CLikelihoodPass::Chunk::Chunk(int columns, int others)
    : cases_(kChunkCases * PaddedLanes(columns)),
      predictor_(kChunkCases),
      curve_(kChunkCases),
      direct_(kChunkCases * WholeTiles(1 + others)),
      scaled_(kChunkCases * WholeTiles(columns)),
      products_((WholeTiles(1 + others) + WholeTiles(columns)) * PaddedLanes(columns)) {}

void CLikelihoodPass::Standardise(const CaseBlock& block, std::int64_t first, std::int64_t cases,
                                  const VectorXd& slopes, Chunk& chunk) const {
  const std::int64_t stride = PaddedLanes(columns_);
  const auto count = static_cast<std::int64_t>(mean_.size());
  const double* const mean = mean_.data();
  const double* const inverse = inverseSd_.data();
  const double* const slope = slopes.data();
  for (std::int64_t k = 0; k < cases; ++k) {
    const double* const from = block.cells + (first + k) * block.stride;
    double* const row = chunk.cases_.Data() + k * stride;
    for (std::int64_t j = 0; j < count; ++j) row[j] = (from[j] - mean[j]) * inverse[j];
    if (constant_) row[count] = 1;
    double sum = 0;
    for (std::int64_t j = 0; j < columns_; ++j) sum += row[j] * slope[j];
    chunk.predictor_.Data()[k] = sum;
  }
  if (others_ > 0) std::fill_n(chunk.Mixed(0), others_ * kChunkCases, 0.0);
}

void CLikelihoodPass::AddCase(const CaseLikelihood& one, double weight, std::int64_t k,
                              Chunk& chunk, LikelihoodSums& sums) const {
  sums.value += weight * one.value;
  chunk.Slope()[k] = weight * one.slope;
  chunk.Curve()[k] = weight * one.curve;
  for (int o = 0; o < 2; ++o) {
    if (one.other[o] < 0) continue;
    const Index at = columns_ + one.other[o];
    sums.gradient(at) += weight * one.otherSlope[o];
    sums.hessian(at, at) += weight * one.otherCurve[o == 0 ? 0 : 2];
    chunk.Mixed(one.other[o])[k] = weight * one.mixed[o];
  }
  if (one.other[0] < 0 || one.other[1] < 0) return;
  const Index a = columns_ + one.other[0];
  const Index b = columns_ + one.other[1];
  sums.hessian(a, b) += weight * one.otherCurve[1];
  sums.hessian(b, a) += weight * one.otherCurve[1];
}

void CLikelihoodPass::Scale(Chunk& chunk, std::int64_t cases) const {
  const std::int64_t stride = PaddedLanes(columns_);
  for (std::int64_t j = 0; j < columns_; ++j) {
    double* const to = chunk.scaled_.Data() + j * kChunkCases;
    const double* const from = chunk.cases_.Data() + j;
    for (std::int64_t k = 0; k < cases; ++k) to[k] = chunk.curve_.Data()[k] * from[k * stride];
  }
}

// The gradient x' slope, x' mixed, and the lower triangle of x' curve x, in tiles of rows.
void CLikelihoodPass::AddChunk(Chunk& chunk, std::int64_t cases, LikelihoodSums& sums) const {
  const Kernels& kernels = ActiveKernels();
  const std::int64_t stride = PaddedLanes(columns_);
  const std::int64_t direct = WholeTiles(1 + others_);
  Scale(chunk, cases);
  chunk.products_.Clear();
  double* const products = chunk.products_.Data();
  const auto multiply = [&](const double* rows, std::int64_t columns, double* result) {
    kernels.multiplyRows(rows, kChunkCases, kRowsAtOnce, chunk.cases_.Data(), columns, cases,
                         result, stride);
  };
  for (std::int64_t row = 0; row < direct; row += kRowsAtOnce) {
    multiply(chunk.direct_.Data() + row * kChunkCases, stride, products + row * stride);
  }
  double* const triangle = products + direct * stride;
  for (std::int64_t row = 0; row < columns_; row += kRowsAtOnce) {
    multiply(chunk.scaled_.Data() + row * kChunkCases, row + kRowsAtOnce, triangle + row * stride);
  }
  for (std::int64_t i = 0; i < columns_; ++i) {
    sums.gradient(i) += products[i];
    for (std::int64_t o = 0; o < others_; ++o) {
      const double mixed = products[(1 + o) * stride + i];
      sums.hessian(i, columns_ + o) += mixed;
      sums.hessian(columns_ + o, i) += mixed;
    }
    for (std::int64_t j = 0; j <= i; ++j) {
      const double product = triangle[i * stride + j];
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
    // So short a step changes the second derivatives by no more than its length, and what it leaves
    // of the gradient is its square: no pass has to confirm it.
    constexpr double kShort = 1e-8;
    if (length <= kShort) {
      result.parameters += step;
      result.sums.value += rise / 2;
      result.sums.gradient += result.sums.hessian * step;
      break;
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
