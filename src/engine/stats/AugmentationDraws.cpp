#include "engine/stats/AugmentationDraws.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace stats {

namespace {

using Eigen::Index;
using Eigen::Lower;
using Eigen::MatrixXd;
using Eigen::Upper;
using Eigen::VectorXd;
using Pattern = CAugmentationSample::Pattern;
using Segment = CAugmentationSample::Segment;

// Rows and columns of a matrix, elements of a vector. Eigen's own views copy the lists.
void Take(const MatrixXd& from, const std::vector<int>& rows, const std::vector<int>& columns,
          MatrixView to) {
  for (Index j = 0; j < to.cols(); ++j) {
    const double* const column = from.col(columns[static_cast<std::size_t>(j)]).data();
    for (Index i = 0; i < to.rows(); ++i) to(i, j) = column[rows[static_cast<std::size_t>(i)]];
  }
}
void Take(const double* from, const std::vector<int>& places, VectorView to) {
  for (Index i = 0; i < to.size(); ++i) to(i) = from[places[static_cast<std::size_t>(i)]];
}

}  // namespace

// M. S. Bartlett's (1933) decomposition of a Wishart matrix with df degrees of freedom.
void CModelDraw::DrawWishart(double df, CRandomStream& random) {
  const Index p = average_.size();
  wishart_.setZero(p, p);
  for (Index i = 0; i < p; ++i) {
    for (Index j = 0; j < i; ++j) wishart_(i, j) = random.Normal();
    wishart_(i, i) = std::sqrt(random.ChiSquare(df - static_cast<double>(i)));
  }
}

bool CModelDraw::Draw(const AugmentationSums& sums, CRandomStream& random, AugmentationModel& model,
                      VectorXd& rescaled) {
  const double n = sample_.N();
  average_ = sums.sum / n;
  squares_ = sums.products.selfadjointView<Lower>();
  squares_.noalias() -= n * average_ * average_.transpose();
  factor_.compute(squares_);
  if (factor_.info() != Eigen::Success) return false;
  root_ = factor_.matrixL();
  DrawWishart(n - 1, random);
  // inverse = A A' with A = root'^-1 wishart; covariance = B B' with B = root wishart'^-1.
  a_ = wishart_;
  root_.triangularView<Lower>().transpose().solveInPlace(a_);
  b_ = root_.transpose();
  wishart_.triangularView<Lower>().solveInPlace(b_);
  b_.transposeInPlace();
  normal_.resize(average_.size());
  for (double& one : normal_) one = random.Normal();
  deviation_.noalias() = b_ * normal_;
  model.mean = average_ + deviation_ / std::sqrt(n);
  Rescale(model, rescaled);
  model.covariance.noalias() = b_ * b_.transpose();
  model.inverse.noalias() = a_ * a_.transpose();
  return model.covariance.allFinite() && model.inverse.allFinite();
}

void CModelDraw::Rescale(AugmentationModel& model, VectorXd& rescaled) {
  const Index p = average_.size();
  rescaled.setOnes(p);
  for (Index j = 0; j < p; ++j) {
    const AugmentationVariable& variable = sample_.Variable(static_cast<int>(j));
    if (variable.thresholds.size() != 1) continue;
    const double sd = b_.row(j).norm();
    const double threshold = variable.thresholds.front();
    rescaled(j) = sd;
    b_.row(j) /= sd;
    a_.row(j) *= sd;
    model.mean(j) = threshold + (model.mean(j) - threshold) / sd;
  }
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
    const Conditional given = Condition(model, sample_.Patterns()[segment.pattern]);
    if (state != nullptr) {
      DrawUnderlying(model, given, segment, random, state, imputed);
    } else {
      DrawNormal(given, segment, random, imputed);
    }
  }
  if (state != nullptr) AddStates(state);
}

// The distribution of the missing values given the observed ones. It is read off the inverse
// covariance matrix, where few values are missing much faster than from the matrix itself.
CAugmentationBlock::Conditional CAugmentationBlock::Condition(const AugmentationModel& model,
                                                              const Pattern& pattern) {
  const auto& m = pattern.missing;
  const auto& o = pattern.observed;
  const auto missing = static_cast<Index>(m.size()), observed = static_cast<Index>(o.size());
  Conditional given{slopes_.Matrix(missing, observed), noise_.Matrix(missing, missing),
                    constant_.Vector(missing)};
  if (m.empty()) return given;
  MatrixView inverse = inverse_.Matrix(missing, missing);
  Take(model.inverse, m, m, inverse);
  const Eigen::LLT<Eigen::Ref<MatrixXd>> factor(inverse);
  Take(model.inverse, m, o, given.slopes);
  factor.solveInPlace(given.slopes);
  given.slopes = -given.slopes;
  VectorView expected = expected_.Vector(observed);
  Take(model.mean.data(), o, expected);
  Take(model.mean.data(), m, given.constant);
  given.constant.noalias() -= given.slopes * expected;
  given.noise.setIdentity();
  factor.matrixU().solveInPlace(given.noise);
  return given;
}

void CAugmentationBlock::DrawNormal(const Conditional& given, const Segment& segment,
                                    CRandomStream& random, double* imputed) {
  const Pattern& pattern = sample_.Patterns()[segment.pattern];
  const auto& o = pattern.observed;
  const auto cases = static_cast<Index>(segment.count);
  const auto rows = static_cast<Index>(pattern.missing.size());
  MatrixView observed = observed_.Matrix(static_cast<Index>(o.size()), cases);
  MatrixView numbers = random_.Matrix(rows, cases);
  for (Index k = 0; k < cases; ++k) {
    const double* const cells = sample_.Cells(segment.first + static_cast<std::size_t>(k));
    for (std::size_t j = 0; j < o.size(); ++j) observed(static_cast<Index>(j), k) = cells[o[j]];
    for (Index i = 0; i < rows; ++i) numbers(i, k) = random.Normal();
  }
  MatrixView missing = missing_.Matrix(rows, cases);
  missing.noalias() = given.slopes * observed;
  MatrixView noised = noised_.Matrix(rows, cases);
  noised.noalias() = given.noise.triangularView<Upper>() * numbers;
  missing += noised;
  missing.colwise() += given.constant;
  if (imputed != nullptr) {
    std::copy_n(missing.data(), missing.size(), imputed + sample_.FirstMissing(segment.first));
  }
  AddDrawn(segment, observed, missing);
}

void CAugmentationBlock::AddDrawn(const Segment& segment, const MatrixView& observed,
                                  const MatrixView& missing) {
  const Pattern& pattern = sample_.Patterns()[segment.pattern];
  const auto& m = pattern.missing;
  const auto& o = pattern.observed;
  // The random numbers are used up: their place takes the weighted values.
  MatrixView weighted = random_.Matrix(missing.rows(), missing.cols());
  weighted = missing;
  if (sample_.HasWeights()) {
    for (Index k = 0; k < weighted.cols(); ++k)
      weighted.col(k) *= sample_.Weight(segment.first + static_cast<std::size_t>(k));
  }
  VectorView total = total_.Vector(missing.rows());
  total = weighted.rowwise().sum();
  MatrixView cross = cross_.Matrix(missing.rows(), observed.rows());
  cross.noalias() = weighted * observed.transpose();
  MatrixView own = own_.Matrix(missing.rows(), missing.rows());
  own.noalias() = weighted * missing.transpose();
  MatrixXd& products = sums_.products;
  for (std::size_t i = 0; i < m.size(); ++i) {
    const auto row = static_cast<Index>(i);
    sums_.sum(m[i]) += total(row);
    for (std::size_t j = 0; j < o.size(); ++j) {
      products(std::max(m[i], o[j]), std::min(m[i], o[j])) += cross(row, static_cast<Index>(j));
    }
    for (std::size_t j = 0; j <= i; ++j) products(m[i], m[j]) += own(row, static_cast<Index>(j));
  }
}

void CAugmentationBlock::DrawUnderlying(const AugmentationModel& model, const Conditional& given,
                                        const Segment& segment, CRandomStream& random,
                                        double* state, double* imputed) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  const Pattern& pattern = sample_.Patterns()[segment.pattern];
  const auto p = static_cast<Index>(sample_.Variables());
  const auto& m = pattern.missing;
  const auto rows = static_cast<Index>(m.size());
  VectorView observed = observed_.Vector(static_cast<Index>(pattern.observed.size()));
  VectorView numbers = random_.Vector(rows);
  VectorView drawn = missing_.Vector(rows);
  for (std::size_t k = 0; k < segment.count; ++k) {
    const std::size_t place = segment.first + k;
    const double* const cells = sample_.Cells(place);
    Eigen::Map<VectorXd> values(state + place * static_cast<std::size_t>(p), p);
    if (!m.empty()) {
      Take(values.data(), pattern.observed, observed);
      for (double& one : numbers) one = random.Normal();
      drawn = given.constant;
      drawn.noalias() += given.slopes * observed;
      drawn.noalias() += given.noise.triangularView<Upper>() * numbers;
      for (Index i = 0; i < rows; ++i) values(m[static_cast<std::size_t>(i)]) = drawn(i);
      if (imputed != nullptr) {
        std::copy_n(drawn.data(), drawn.size(), imputed + sample_.FirstMissing(place));
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
  weighted_ = values;
  for (Index k = 0; k < cases; ++k) {
    const double weight = sample_.Weight(block_.firstCase + static_cast<std::size_t>(k));
    sums_.sum += weight * values.col(k);
    weighted_.col(k) *= std::sqrt(weight);
  }
  sums_.products.selfadjointView<Lower>().rankUpdate(weighted_);
}

}  // namespace stats
