#include "engine/stats/Components.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <Eigen/Eigenvalues>

#include "engine/stats/Parallel.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

// The eigenvalues of one random correlation matrix or, with standard deviations, covariance matrix.
VectorXd DrawEigenvalues(Index p, const VectorXd* deviations, double n, std::mt19937_64& random) {
  std::normal_distribution<double> normal;
  MatrixXd factor = MatrixXd::Zero(p, p);
  for (Index i = 0; i < p; ++i) {
    std::gamma_distribution<double> gamma((n - 1 - static_cast<double>(i)) / 2, 2);
    factor(i, i) = std::sqrt(gamma(random));
    for (Index j = 0; j < i; ++j) factor(i, j) = normal(random);
    if (deviations != nullptr) {
      factor.row(i) *= (*deviations)(i) / std::sqrt(n - 1);
    } else {  // a row of unit length makes the product a correlation matrix
      factor.row(i).normalize();
    }
  }
  const Eigen::SelfAdjointEigenSolver<MatrixXd> solver(factor * factor.transpose(),
                                                       Eigen::EigenvaluesOnly);
  return solver.eigenvalues().reverse();
}

}  // namespace

ComponentsResult EstimateComponents(const MatrixXd& matrix) {
  ComponentsResult result;
  if (matrix.rows() < 1 || matrix.rows() != matrix.cols()) return result;
  result.status = EStatus::NotFinite;
  if (!matrix.allFinite()) return result;
  const Eigen::SelfAdjointEigenSolver<MatrixXd> solver(matrix);
  result.status = solver.info() == Eigen::Success ? EStatus::Ok : EStatus::NotConverged;
  if (result.status != EStatus::Ok) return result;
  result.eigenvalues = solver.eigenvalues().reverse();
  result.vectors = solver.eigenvectors().rowwise().reverse();
  for (Index j = 0; j < result.vectors.cols(); ++j) {
    if (result.vectors.col(j).sum() < 0) result.vectors.col(j) = -result.vectors.col(j);
  }
  const VectorXd roots = result.eigenvalues.array().max(0).sqrt();
  result.loadings = result.vectors * roots.asDiagonal();
  return result;
}

namespace {

ParallelAnalysisResult DrawSamples(int variables, const VectorXd* deviations, double n, int samples,
                                   std::uint64_t seed, int threads) {
  ParallelAnalysisResult result;
  if (variables < 1 || !(n > variables) || samples < 1) return result;
  std::vector<VectorXd> drawn(static_cast<std::size_t>(samples));
  ParallelFor(threads, samples, [&](std::int64_t sample) {
    std::seed_seq sequence{static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32),
                           static_cast<std::uint32_t>(sample)};
    std::mt19937_64 random(sequence);
    drawn[static_cast<std::size_t>(sample)] = DrawEigenvalues(variables, deviations, n, random);
  });
  result.mean.setZero(variables);
  result.percentile95.setZero(variables);
  for (Index j = 0; j < variables; ++j) {
    std::vector<double> values;
    for (const VectorXd& one : drawn) values.push_back(one(j));
    for (const double value : values) result.mean(j) += value / samples;
    constexpr double kShare = 0.95;
    const auto at =
        static_cast<std::ptrdiff_t>(std::min<double>(std::ceil(kShare * samples), samples) - 1);
    std::nth_element(values.begin(), values.begin() + at, values.end());
    result.percentile95(j) = values[static_cast<std::size_t>(at)];
  }
  return result;
}

}  // namespace

ParallelAnalysisResult AnalyseParallel(int variables, double n, int samples, std::uint64_t seed,
                                       int threads) {
  return DrawSamples(variables, nullptr, n, samples, seed, threads);
}

ParallelAnalysisResult AnalyseParallel(const VectorXd& deviations, double n, int samples,
                                       std::uint64_t seed, int threads) {
  return DrawSamples(static_cast<int>(deviations.size()), &deviations, n, samples, seed, threads);
}

int CountAboveChance(const VectorXd& eigenvalues, const ParallelAnalysisResult& chance) {
  Index above = 0;
  while (above < chance.percentile95.size() && eigenvalues(above) > chance.percentile95(above)) {
    ++above;
  }
  return static_cast<int>(above);
}

}  // namespace stats
