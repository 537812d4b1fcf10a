#include "engine/stats/AugmentationDraws.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Eigen/Cholesky>

namespace stats {

namespace {

using Eigen::Index;
using Eigen::Lower;
using Eigen::MatrixXd;
using Eigen::Upper;
using Eigen::VectorXd;
using Pattern = CAugmentationSample::Pattern;
using Segment = CAugmentationSample::Segment;

// M. S. Bartlett's (1933) decomposition of a Wishart matrix with df degrees of freedom.
MatrixXd WishartFactor(Index p, double df, CRandomStream& random) {
  MatrixXd factor = MatrixXd::Zero(p, p);
  for (Index i = 0; i < p; ++i) {
    for (Index j = 0; j < i; ++j) factor(i, j) = random.Normal();
    factor(i, i) = std::sqrt(random.ChiSquare(df - static_cast<double>(i)));
  }
  return factor;
}

}  // namespace

bool DrawModel(const CAugmentationSample& sample, const AugmentationSums& sums,
               CRandomStream& random, AugmentationModel& model, VectorXd& rescaled) {
  const Index p = sums.sum.size();
  const double n = sample.N();
  const VectorXd average = sums.sum / n;
  MatrixXd squares = sums.products.selfadjointView<Lower>();
  squares.noalias() -= n * average * average.transpose();
  const Eigen::LLT<MatrixXd> factor(squares);
  if (factor.info() != Eigen::Success) return false;
  const MatrixXd root = factor.matrixL();
  const MatrixXd wishart = WishartFactor(p, n - 1, random);
  // inverse = A A' with A = root'^-1 wishart; covariance = B B' with B = root wishart'^-1.
  MatrixXd a = wishart;
  root.triangularView<Lower>().transpose().solveInPlace(a);
  MatrixXd b = root.transpose();
  wishart.triangularView<Lower>().solveInPlace(b);
  b.transposeInPlace();
  VectorXd normal(p);
  for (double& one : normal) one = random.Normal();
  model.mean = average + b * normal / std::sqrt(n);
  rescaled.setOnes(p);
  for (Index j = 0; j < p; ++j) {
    const AugmentationVariable& variable = sample.Variable(static_cast<int>(j));
    if (variable.thresholds.size() != 1) continue;
    const double sd = b.row(j).norm();
    const double threshold = variable.thresholds.front();
    rescaled(j) = sd;
    b.row(j) /= sd;
    a.row(j) *= sd;
    model.mean(j) = threshold + (model.mean(j) - threshold) / sd;
  }
  model.covariance.noalias() = b * b.transpose();
  model.inverse.noalias() = a * a.transpose();
  return model.covariance.allFinite() && model.inverse.allFinite();
}

CAugmentationBlock::CAugmentationBlock(const CAugmentationSample& sample, std::size_t block)
    : sample_(sample), block_(sample.Blocks()[block]) {
  const Index p = sample.Variables();
  sums_.sum.setZero(p);
  sums_.products.setZero(p, p);
}

void CAugmentationBlock::Draw(const AugmentationModel& model, const VectorXd& rescaled,
                              CRandomStream& random, double* state, double* imputed) {
  sums_.sum.setZero();
  sums_.products.setZero();
  if (state != nullptr) {
    for (Index j = 0; j < rescaled.size(); ++j) {
      if (rescaled(j) == 1) continue;
      const double threshold = sample_.Variable(static_cast<int>(j)).thresholds.front();
      double* value = state + block_.firstCase * static_cast<std::size_t>(rescaled.size()) + j;
      for (std::size_t k = 0; k < block_.cases; ++k, value += rescaled.size())
        *value = threshold + (*value - threshold) / rescaled(j);
    }
  }
  for (std::size_t s = 0; s < block_.segments; ++s) {
    const Segment& segment = sample_.Segments()[block_.firstSegment + s];
    Condition(model, sample_.Patterns()[segment.pattern]);
    if (state != nullptr) {
      DrawUnderlying(model, segment, random, state, imputed);
    } else {
      DrawNormal(segment, random, imputed);
    }
  }
  if (state != nullptr) AddStates(state);
}

// The distribution of the missing values given the observed ones. It is read off the inverse
// covariance matrix, where few values are missing much faster than from the matrix itself.
void CAugmentationBlock::Condition(const AugmentationModel& model, const Pattern& pattern) {
  const auto& m = pattern.missing;
  const auto& o = pattern.observed;
  if (m.empty()) return;
  const Eigen::LLT<MatrixXd> factor(model.inverse(m, m));
  slopes_ = model.inverse(m, o);
  factor.solveInPlace(slopes_);
  slopes_ = -slopes_;
  constant_ = model.mean(m);
  constant_.noalias() -= slopes_ * VectorXd(model.mean(o));
  noise_.setIdentity(slopes_.rows(), slopes_.rows());
  factor.matrixU().solveInPlace(noise_);
}

void CAugmentationBlock::DrawNormal(const Segment& segment, CRandomStream& random,
                                    double* imputed) {
  const Pattern& pattern = sample_.Patterns()[segment.pattern];
  const auto& m = pattern.missing;
  const auto& o = pattern.observed;
  const auto cases = static_cast<Index>(segment.count);
  observed_.resize(static_cast<Index>(o.size()), cases);
  random_.resize(static_cast<Index>(m.size()), cases);
  for (Index k = 0; k < cases; ++k) {
    const double* const cells = sample_.Cells(segment.first + static_cast<std::size_t>(k));
    for (std::size_t j = 0; j < o.size(); ++j) observed_(static_cast<Index>(j), k) = cells[o[j]];
    for (Index i = 0; i < random_.rows(); ++i) random_(i, k) = random.Normal();
  }
  missing_.noalias() = slopes_ * observed_;
  missing_ += noise_.triangularView<Upper>() * random_;
  missing_.colwise() += constant_;
  if (imputed != nullptr) {
    std::copy_n(missing_.data(), missing_.size(), imputed + sample_.FirstMissing(segment.first));
  }
  // The random numbers are used up: their place takes the weighted values.
  random_ = missing_;
  if (sample_.HasWeights()) {
    for (Index k = 0; k < cases; ++k)
      random_.col(k) *= sample_.Weight(segment.first + static_cast<std::size_t>(k));
  }
  total_ = random_.rowwise().sum();
  cross_.noalias() = random_ * observed_.transpose();
  own_.noalias() = random_ * missing_.transpose();
  MatrixXd& products = sums_.products;
  for (std::size_t i = 0; i < m.size(); ++i) {
    const auto row = static_cast<Index>(i);
    sums_.sum(m[i]) += total_(row);
    for (std::size_t j = 0; j < o.size(); ++j) {
      products(std::max(m[i], o[j]), std::min(m[i], o[j])) += cross_(row, static_cast<Index>(j));
    }
    for (std::size_t j = 0; j <= i; ++j) products(m[i], m[j]) += own_(row, static_cast<Index>(j));
  }
}

void CAugmentationBlock::DrawUnderlying(const AugmentationModel& model, const Segment& segment,
                                        CRandomStream& random, double* state, double* imputed) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  const Pattern& pattern = sample_.Patterns()[segment.pattern];
  const auto p = static_cast<Index>(sample_.Variables());
  const auto& m = pattern.missing;
  given_.resize(static_cast<Index>(pattern.observed.size()));
  for (std::size_t k = 0; k < segment.count; ++k) {
    const std::size_t place = segment.first + k;
    const double* const cells = sample_.Cells(place);
    Eigen::Map<VectorXd> values(state + place * static_cast<std::size_t>(p), p);
    if (!m.empty()) {
      given_ = values(pattern.observed);
      total_.resize(static_cast<Index>(m.size()));
      for (double& one : total_) one = random.Normal();
      drawn_ = constant_;
      drawn_.noalias() += slopes_ * given_;
      drawn_.noalias() += noise_.triangularView<Upper>() * total_;
      values(m) = drawn_;
      if (imputed != nullptr) {
        std::copy_n(drawn_.data(), drawn_.size(), imputed + sample_.FirstMissing(place));
      }
    }
    deviation_ = values - model.mean;
    for (const int j : pattern.ordinal) {
      const auto& thresholds = sample_.Variable(j).thresholds;
      const auto category = static_cast<std::size_t>(cells[j]);
      const double low = category == 0 ? -kInfinite : thresholds[category - 1];
      const double high = category == thresholds.size() ? kInfinite : thresholds[category];
      const double precision = model.inverse(j, j);
      const double expected =
          deviation_(j) - model.inverse.col(j).dot(deviation_) / precision + model.mean(j);
      const double sd = 1 / std::sqrt(precision);
      values(j) =
          expected + sd * random.NormalWithin((low - expected) / sd, (high - expected) / sd);
      deviation_(j) = values(j) - model.mean(j);
    }
  }
}

void CAugmentationBlock::AddStates(const double* state) {
  const auto p = static_cast<Index>(sample_.Variables());
  const auto cases = static_cast<Index>(block_.cases);
  const Eigen::Map<const MatrixXd> values(state + block_.firstCase * static_cast<std::size_t>(p), p,
                                          cases);
  if (!sample_.HasWeights()) {
    sums_.sum = values.rowwise().sum();
    sums_.products.selfadjointView<Lower>().rankUpdate(values);
    return;
  }
  observed_ = values;
  for (Index k = 0; k < cases; ++k) {
    const double weight = sample_.Weight(block_.firstCase + static_cast<std::size_t>(k));
    sums_.sum += weight * values.col(k);
    observed_.col(k) *= std::sqrt(weight);
  }
  sums_.products.selfadjointView<Lower>().rankUpdate(observed_);
}

}  // namespace stats
