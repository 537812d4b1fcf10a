#include "engine/stats/IncompleteNormal.h"

#include <cmath>
#include <numbers>
#include <utility>

#include <Eigen/Cholesky>

#include "engine/stats/Moments.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

std::string KeyOf(const double* cells, Index variables) {
  std::string key(static_cast<std::size_t>(variables), '0');
  for (Index j = 0; j < variables; ++j) {
    if (std::isnan(cells[j])) key[static_cast<std::size_t>(j)] = '1';
  }
  return key;
}

MatrixXd Part(const MatrixXd& matrix, const std::vector<int>& rows,
              const std::vector<int>& columns) {
  return matrix(rows, columns);
}

// What a complete sample would have had, as far as it can be expected.
struct Expected {
  VectorXd sum;
  MatrixXd products;
  double logLikelihood = 0;
  bool definite = true;
};

// One pattern at the given mean and covariance matrix.
void AddPattern(const CMissingPatterns::Pattern& pattern, const VectorXd& mean,
                const MatrixXd& covariance, Expected& expected) {
  const auto& o = pattern.observed;
  const auto& m = pattern.missing;
  const Eigen::LLT<MatrixXd> factor(Part(covariance, o, o));
  if (factor.info() != Eigen::Success) {
    expected.definite = false;
    return;
  }
  const VectorXd meanO = mean(o);
  const double n = pattern.n;
  // Squares about the mean, for the likelihood.
  const MatrixXd squares = pattern.products - pattern.sum * meanO.transpose() -
                           meanO * pattern.sum.transpose() + n * meanO * meanO.transpose();
  const double logDeterminant = 2 * factor.matrixLLT().diagonal().array().log().sum();
  const auto width = static_cast<double>(o.size());
  expected.logLikelihood -= 0.5 * (n * (width * std::log(2 * std::numbers::pi) + logDeterminant) +
                                   factor.solve(squares).trace());
  expected.sum(o) += pattern.sum;
  expected.products(o, o) += pattern.products;
  if (m.empty()) return;
  const MatrixXd slopes = factor.solve(Part(covariance, o, m)).transpose();
  const VectorXd constant = VectorXd(mean(m)) - slopes * meanO;
  const VectorXd sumM = n * constant + slopes * pattern.sum;
  const MatrixXd cross = constant * pattern.sum.transpose() + slopes * pattern.products;
  const MatrixXd residual = Part(covariance, m, m) - slopes * Part(covariance, o, m);
  expected.sum(m) += sumM;
  expected.products(m, o) += cross;
  expected.products(o, m) += cross.transpose();
  // E[y y'] of the missing ones: (a + B x)(a + B x)' summed, and their own variance.
  expected.products(m, m) +=
      cross * slopes.transpose() + sumM * constant.transpose() + n * residual;
}

Expected Expect(const CMissingPatterns& patterns, const VectorXd& mean,
                const MatrixXd& covariance) {
  Expected expected{VectorXd::Zero(mean.size()), MatrixXd::Zero(mean.size(), mean.size())};
  for (const auto& pattern : patterns.Patterns()) {
    AddPattern(pattern, mean, covariance, expected);
    if (!expected.definite) break;
  }
  return expected;
}

// Means and variances of the observed values; no covariances.
void Start(const CMissingPatterns& patterns, VectorXd& mean, MatrixXd& covariance) {
  VectorXd n = VectorXd::Zero(mean.size());
  VectorXd squares = n;
  for (const auto& pattern : patterns.Patterns()) {
    n(pattern.observed).array() += pattern.n;
    mean(pattern.observed) += pattern.sum;
    squares(pattern.observed) += pattern.products.diagonal();
  }
  mean = mean.cwiseQuotient(n.cwiseMax(1));
  covariance =
      (squares.cwiseQuotient(n.cwiseMax(1)) - mean.cwiseAbs2()).cwiseMax(1e-12).asDiagonal();
}

}  // namespace

CMissingPatterns::CMissingPatterns(VectorXd center, VectorXd scale)
    : center_(std::move(center)), scale_(std::move(scale)) {}

CMissingPatterns::Pattern& CMissingPatterns::PatternOf(const double* cells) {
  key_ = KeyOf(cells, center_.size());
  const auto [at, isNew] = index_.try_emplace(key_, patterns_.size());
  if (isNew) {
    Pattern pattern;
    for (Index j = 0; j < center_.size(); ++j) {
      (std::isnan(cells[j]) ? pattern.missing : pattern.observed).push_back(static_cast<int>(j));
    }
    const auto width = static_cast<Index>(pattern.observed.size());
    pattern.sum.setZero(width);
    pattern.products.setZero(width, width);
    patterns_.push_back(std::move(pattern));
  }
  return patterns_[at->second];
}

void CMissingPatterns::Add(const CaseBlock& block) {
  VectorXd values(center_.size());
  for (std::int64_t k = 0; k < block.cases; ++k) {
    const double* const cells = block.cells + k * block.stride;
    const double weight = block.weights != nullptr ? block.weights[k] : 1;
    if (!(weight > 0)) continue;
    bool any = false;
    for (Index j = 0; j < center_.size(); ++j) any = any || !std::isnan(cells[j]);
    if (!any) {
      ++allMissing_;
      continue;
    }
    Pattern& pattern = PatternOf(cells);
    const auto width = static_cast<Index>(pattern.observed.size());
    for (Index i = 0; i < width; ++i) {
      const int variable = pattern.observed[static_cast<std::size_t>(i)];
      values(i) = (cells[variable] - center_(variable)) / scale_(variable);
    }
    const auto observed = values.head(width);
    ++pattern.cases;
    pattern.n += weight;
    pattern.sum += weight * observed;
    pattern.products.noalias() += weight * observed * observed.transpose();
  }
}

std::int64_t CMissingPatterns::Complete() const {
  for (const Pattern& pattern : patterns_) {
    if (pattern.missing.empty()) return pattern.cases;
  }
  return 0;
}

double CMissingPatterns::N() const {
  double n = 0;
  for (const Pattern& pattern : patterns_) n += pattern.n;
  return n;
}

IncompleteNormalResult EstimateIncompleteNormal(const CMissingPatterns& patterns, int iterations,
                                                double criterion) {
  IncompleteNormalResult result;
  const Index p = patterns.Center().size();
  const double n = patterns.N();
  if (!(n > 0)) return result;
  result.status = n > static_cast<double>(p) ? EStatus::NotConverged : EStatus::TooFewCases;
  if (result.status == EStatus::TooFewCases) return result;
  VectorXd mean = VectorXd::Zero(p);
  MatrixXd covariance;
  Start(patterns, mean, covariance);
  for (; result.iterations <= iterations; ++result.iterations) {
    const Expected expected = Expect(patterns, mean, covariance);
    if (!expected.definite) {
      result.status = EStatus::NotPositiveDefinite;
      return result;
    }
    result.logLikelihoods.push_back(expected.logLikelihood);
    if (result.status == EStatus::Ok || result.iterations == iterations) break;
    const VectorXd nextMean = expected.sum / n;
    MatrixXd next = expected.products / n - nextMean * nextMean.transpose();
    next = (next + next.transpose()).eval() / 2;
    result.change = std::max((nextMean - mean).cwiseAbs().maxCoeff(),
                             (next - covariance).cwiseAbs().maxCoeff());
    mean = nextMean;
    covariance = next;
    if (result.change <= criterion) result.status = EStatus::Ok;
  }
  // Where variables depend on each other the smallest eigenvalue shrinks with every iteration, and
  // never is 0.
  constexpr double kVanishing = 1e-7;
  const Definiteness definite = CheckPositiveDefinite(covariance);
  if (!(definite.smallest > kVanishing * definite.largest)) {
    result.status = EStatus::NotPositiveDefinite;
    return result;
  }
  // Back to the units of the data; each value observed has a factor of its own in the density.
  const VectorXd& scale = patterns.Scale();
  result.mean = patterns.Center() + scale.cwiseProduct(mean);
  result.covariance = scale.asDiagonal() * covariance * scale.asDiagonal();
  double jacobian = 0;
  for (const auto& pattern : patterns.Patterns()) {
    for (const int j : pattern.observed) jacobian += pattern.n * std::log(scale(j));
  }
  for (double& value : result.logLikelihoods) value -= jacobian;
  return result;
}

CConditionalMeans::CConditionalMeans(const CMissingPatterns& patterns,
                                     const IncompleteNormalResult& result)
    : mean_(result.mean) {
  for (const auto& pattern : patterns.Patterns()) {
    Conditional conditional;
    conditional.observed = pattern.observed;
    conditional.missing = pattern.missing;
    const MatrixXd ofO = Part(result.covariance, pattern.observed, pattern.observed);
    conditional.slopes =
        ofO.ldlt().solve(Part(result.covariance, pattern.observed, pattern.missing)).transpose();
    conditional.constant =
        VectorXd(mean_(pattern.missing)) - conditional.slopes * VectorXd(mean_(pattern.observed));
    std::string key(static_cast<std::size_t>(mean_.size()), '0');
    for (const int j : pattern.missing) key[static_cast<std::size_t>(j)] = '1';
    byPattern_.emplace(std::move(key), std::move(conditional));
  }
}

void CConditionalMeans::Fill(const double* cells, double* filled) const {
  const auto at = byPattern_.find(KeyOf(cells, mean_.size()));
  if (at == byPattern_.end()) {  // no value, or a pattern that was not among the cases
    for (Index j = 0; j < mean_.size(); ++j) filled[j] = std::isnan(cells[j]) ? mean_(j) : cells[j];
    return;
  }
  const Conditional& conditional = at->second;
  std::copy(cells, cells + mean_.size(), filled);
  for (std::size_t i = 0; i < conditional.missing.size(); ++i) {
    const auto row = static_cast<Index>(i);
    double value = conditional.constant(row);
    for (std::size_t j = 0; j < conditional.observed.size(); ++j)
      value += conditional.slopes(row, static_cast<Index>(j)) * cells[conditional.observed[j]];
    filled[conditional.missing[i]] = value;
  }
}

}  // namespace stats
