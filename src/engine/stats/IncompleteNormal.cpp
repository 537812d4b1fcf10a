#include "engine/stats/IncompleteNormal.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>

#include "engine/stats/Moments.h"
#include "engine/stats/Parallel.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

void KeyOf(const double* cells, Index variables, std::string& key) {
  key.assign(static_cast<std::size_t>(variables), '0');
  for (Index j = 0; j < variables; ++j) {
    if (std::isnan(cells[j])) key[static_cast<std::size_t>(j)] = '1';
  }
}

// Where EM stands.
struct Model {
  VectorXd mean;
  MatrixXd covariance, inverse;
  double logDeterminant = 0;

  // False when the covariance matrix is not positive definite.
  bool Invert() {
    const Eigen::LLT<MatrixXd> factor(covariance);
    if (factor.info() != Eigen::Success) return false;
    inverse = factor.solve(MatrixXd::Identity(mean.size(), mean.size()));
    logDeterminant = 2 * factor.matrixLLT().diagonal().array().log().sum();
    return inverse.allFinite();
  }
};

// What a complete sample would have had, as far as it can be expected: deviations from the mean
// and their products.
struct Expected {
  VectorXd sum;
  MatrixXd products;
  double logLikelihood = 0;
  bool definite = true;
};

// Room for the work on a pattern.
struct Workspace {
  VectorXd deviations, sum, mean;
  MatrixXd squares, inverse, slopes, cross, own;
};

// One pattern. With Q the inverse covariance matrix, missing values have the slopes -Q_mm^-1 Q_mo
// on the observed ones and the residual covariance matrix Q_mm^-1; the inverse of S_oo is Q_oo +
// Q_om slopes. So the factorisation is that of the missing values, which are few as a rule.
void AddPattern(const CMissingPatterns::Pattern& pattern, const Model& model, Workspace& room,
                Expected& expected) {
  const auto& o = pattern.observed;
  const auto& m = pattern.missing;
  room.mean = model.mean(o);
  pattern.Deviations(room.mean, room.deviations, room.squares);
  expected.sum(o) += room.deviations;
  expected.products(o, o) += room.squares;
  double logDeterminant = model.logDeterminant;
  double distance = model.inverse(o, o).cwiseProduct(room.squares).sum();
  if (!m.empty()) {
    room.inverse = model.inverse(m, m);
    const Eigen::LLT<Eigen::Ref<MatrixXd>> factor(room.inverse);
    if (factor.info() != Eigen::Success) {
      expected.definite = false;
      return;
    }
    room.slopes = model.inverse(m, o);
    factor.solveInPlace(room.slopes);
    room.slopes = -room.slopes;
    room.cross.noalias() = room.slopes * room.squares;
    room.sum.noalias() = room.slopes * room.deviations;
    room.own.setIdentity(room.slopes.rows(), room.slopes.rows());
    factor.solveInPlace(room.own);
    room.own *= pattern.n;
    room.own.noalias() += room.cross * room.slopes.transpose();
    expected.sum(m) += room.sum;
    expected.products(m, o) += room.cross;
    expected.products(o, m) += room.cross.transpose();
    expected.products(m, m) += room.own;
    logDeterminant += 2 * factor.matrixLLT().diagonal().array().log().sum();
    distance += model.inverse(m, o).cwiseProduct(room.cross).sum();
  }
  expected.logLikelihood -=
      0.5 * (pattern.n *
                 (static_cast<double>(o.size()) * std::log(2 * std::numbers::pi) + logDeterminant) +
             distance);
}

// Patterns are shared among threads in parts that do not depend on the number of threads.
Expected Expect(const CMissingPatterns& patterns, const Model& model, int threads) {
  constexpr std::size_t kFewest = 128;
  constexpr std::size_t kMostParts = 64;
  const auto& all = patterns.Patterns();
  const std::size_t length = std::max(kFewest, all.size() / kMostParts + 1);
  const Index p = model.mean.size();
  std::vector<Expected> parts((all.size() + length - 1) / length);
  ParallelFor(threads, static_cast<std::int64_t>(parts.size()), [&](std::int64_t i) {
    const auto at = static_cast<std::size_t>(i);
    Expected& part = parts[at];
    part.sum.setZero(p);
    part.products.setZero(p, p);
    Workspace room;
    const std::size_t end = std::min(all.size(), (at + 1) * length);
    for (std::size_t k = at * length; k < end && part.definite; ++k)
      AddPattern(all[k], model, room, part);
  });
  for (std::size_t i = 1; i < parts.size(); ++i) {
    parts[0].sum += parts[i].sum;
    parts[0].products += parts[i].products;
    parts[0].logLikelihood += parts[i].logLikelihood;
    parts[0].definite = parts[0].definite && parts[i].definite;
  }
  return std::move(parts[0]);
}

// Means and variances of the observed values; no covariances.
Model Start(const CMissingPatterns& patterns) {
  const Index p = patterns.Center().size();
  const VectorXd zero = VectorXd::Zero(p);
  VectorXd n = zero, sum = zero, squares = zero, deviations;
  MatrixXd products;
  for (const auto& pattern : patterns.Patterns()) {
    pattern.Deviations(zero(pattern.observed), deviations, products);
    n(pattern.observed).array() += pattern.n;
    sum(pattern.observed) += deviations;
    squares(pattern.observed) += products.diagonal();
  }
  Model model;
  model.mean = sum.cwiseQuotient(n.cwiseMax(1));
  model.covariance =
      (squares.cwiseQuotient(n.cwiseMax(1)) - model.mean.cwiseAbs2()).cwiseMax(1e-12).asDiagonal();
  return model;
}

// The variables that make up what hardly varies.
std::vector<int> DependentVariables(const MatrixXd& covariance) {
  const Eigen::SelfAdjointEigenSolver<MatrixXd> solver(covariance);
  std::vector<int> variables;
  if (solver.info() != Eigen::Success) return variables;
  const VectorXd weight = solver.eigenvectors().col(0).cwiseAbs();
  constexpr double kShare = 0.1;  // of the largest weight
  for (Index j = 0; j < weight.size(); ++j) {
    if (weight(j) > kShare * weight.maxCoeff()) variables.push_back(static_cast<int>(j));
  }
  return variables;
}

}  // namespace

CMissingPatterns::CMissingPatterns(VectorXd center, VectorXd scale)
    : center_(std::move(center)), scale_(std::move(scale)) {}

void CMissingPatterns::Pattern::Deviations(const VectorXd& mean, VectorXd& deviations,
                                           MatrixXd& squares) const {
  const auto width = static_cast<Index>(observed.size());
  if (rows.empty()) {
    deviations = sum - n * mean;
    squares = products;
    squares.noalias() -= sum * mean.transpose();
    squares.noalias() -= mean * deviations.transpose();
    return;
  }
  deviations.setZero(width);
  squares.setZero(width, width);
  VectorXd one(width);
  for (std::size_t at = 0; at < rows.size(); at += observed.size() + 1) {
    one = Eigen::Map<const VectorXd>(rows.data() + at + 1, width) - mean;
    deviations += rows[at] * one;
    squares.noalias() += rows[at] * one * one.transpose();
  }
}

CMissingPatterns::Pattern& CMissingPatterns::PatternOf(const double* cells) {
  KeyOf(cells, center_.size(), key_);
  if (key_ == lastKey_ && !patterns_.empty()) return patterns_[last_];
  const auto [at, isNew] = index_.try_emplace(key_, patterns_.size());
  if (isNew) {
    Pattern& pattern = patterns_.emplace_back();
    for (Index j = 0; j < center_.size(); ++j) {
      (std::isnan(cells[j]) ? pattern.missing : pattern.observed).push_back(static_cast<int>(j));
    }
  }
  lastKey_ = key_;
  last_ = at->second;
  return patterns_[last_];
}

void CMissingPatterns::AddCase(Pattern& pattern, double weight, const double* observed) {
  const std::size_t width = pattern.observed.size();
  ++pattern.cases;
  pattern.n += weight;
  if (pattern.products.size() == 0) {
    pattern.rows.push_back(weight);
    pattern.rows.insert(pattern.rows.end(), observed, observed + width);
    if (pattern.rows.size() <= width * (width + 1)) return;
    VectorXd sum;
    MatrixXd products;
    pattern.Deviations(VectorXd::Zero(static_cast<Index>(width)), sum, products);
    pattern.sum = std::move(sum);
    pattern.products = std::move(products);
    pattern.rows = {};
    return;
  }
  const Eigen::Map<const VectorXd> values(observed, static_cast<Index>(width));
  pattern.sum += weight * values;
  pattern.products.noalias() += weight * values * values.transpose();
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
    Index i = 0;
    for (const int variable : pattern.observed)
      values(i++) = (cells[variable] - center_(variable)) / scale_(variable);
    AddCase(pattern, weight, values.data());
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
                                                double criterion, int threads) {
  IncompleteNormalResult result;
  const double n = patterns.N();
  if (!(n > 0)) return result;
  result.status = n > static_cast<double>(patterns.Center().size()) ? EStatus::NotConverged
                                                                    : EStatus::TooFewCases;
  if (result.status == EStatus::TooFewCases) return result;
  Model model = Start(patterns);
  const auto fail = [&] {
    result.status = EStatus::NotPositiveDefinite;
    result.dependent = DependentVariables(model.covariance);
    return result;
  };
  for (; result.iterations <= iterations; ++result.iterations) {
    if (!model.Invert()) return fail();
    const Expected expected = Expect(patterns, model, threads);
    if (!expected.definite) return fail();
    result.logLikelihoods.push_back(expected.logLikelihood);
    if (result.status == EStatus::Ok || result.iterations == iterations) break;
    result.meanStep = expected.sum / n;
    MatrixXd next = expected.products / n - result.meanStep * result.meanStep.transpose();
    next = (next + next.transpose()).eval() / 2;
    result.covarianceStep = next - model.covariance;
    result.change = std::max(result.meanStep.cwiseAbs().maxCoeff(),
                             result.covarianceStep.cwiseAbs().maxCoeff());
    model.mean += result.meanStep;
    model.covariance = std::move(next);
    if (result.change <= criterion) result.status = EStatus::Ok;
  }
  // Where variables depend on each other the smallest eigenvalue shrinks with every iteration, and
  // never is 0.
  constexpr double kVanishing = 1e-7;
  const Definiteness definite = CheckPositiveDefinite(model.covariance);
  if (!(definite.smallest > kVanishing * definite.largest)) return fail();
  // Back to the units of the data; each value observed has a factor of its own in the density.
  const VectorXd& scale = patterns.Scale();
  result.mean = patterns.Center() + scale.cwiseProduct(model.mean);
  result.covariance = scale.asDiagonal() * model.covariance * scale.asDiagonal();
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
    if (pattern.missing.empty()) continue;
    Conditional conditional;
    conditional.observed = pattern.observed;
    conditional.missing = pattern.missing;
    const MatrixXd ofO = result.covariance(pattern.observed, pattern.observed);
    const MatrixXd ofM = result.covariance(pattern.observed, pattern.missing);
    conditional.slopes = ofO.ldlt().solve(ofM).transpose();
    conditional.constant =
        VectorXd(mean_(pattern.missing)) - conditional.slopes * VectorXd(mean_(pattern.observed));
    std::string key(static_cast<std::size_t>(mean_.size()), '0');
    for (const int j : pattern.missing) key[static_cast<std::size_t>(j)] = '1';
    byPattern_.emplace(std::move(key), std::move(conditional));
  }
}

void CConditionalMeans::Fill(const double* cells, double* filled) const {
  std::string key;
  KeyOf(cells, mean_.size(), key);
  const auto at = byPattern_.find(key);
  if (at == byPattern_.end()) {  // complete, without any value, or of a pattern not among the cases
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
