#include "engine/stats/IncompleteNormalErrors.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include <Eigen/Cholesky>
#include <Eigen/QR>

#include "engine/stats/Parallel.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::Lower;
using Eigen::MatrixXd;
using Eigen::VectorXd;
using Pattern = CMissingPatterns::Pattern;

constexpr Index kTile = 64;  // columns that one thread works on

// Where the elements of a lower triangle stand, row after row.
Index Place(Index i, Index j) {
  return i >= j ? i * (i + 1) / 2 + j : j * (j + 1) / 2 + i;
}

// `matrix`'s lower triangle.
void Stack(const MatrixXd& matrix, Eigen::Ref<VectorXd> to) {
  Index k = 0;
  for (Index i = 0; i < matrix.rows(); ++i) {
    for (Index j = 0; j <= i; ++j) to(k++) = matrix(i, j);
  }
}

// Work on columns in tiles whose borders do not depend on the number of threads.
template <class Work>
void ForTiles(int threads, Index columns, const Work& work) {
  ParallelFor(threads, (columns + kTile - 1) / kTile, [&](std::int64_t tile) {
    const Index first = tile * kTile;
    work(first, std::min(kTile, columns - first));
  });
}

// The estimates in units of the patterns' scales, and the root of the covariance matrix.
struct Point {
  VectorXd mean, sd;
  MatrixXd covariance, root;

  Point(const CMissingPatterns& patterns, const IncompleteNormalResult& result) {
    const VectorXd inverse = patterns.Scale().cwiseInverse();
    mean = (result.mean - patterns.Center()).cwiseProduct(inverse);
    covariance = inverse.asDiagonal() * result.covariance * inverse.asDiagonal();
    sd = covariance.diagonal().cwiseSqrt();
    root = covariance.llt().matrixL();
  }
};

// A pattern in coordinates in which the covariance matrix is the identity: there the information of
// complete cases is n times a fixed diagonal, so that what is lost with the missing values shows
// however the variables are correlated. With r the root, W the inverse of the observed variables'
// covariance matrix S, d and T the deviations from the mean and their products:
struct Whitened {
  MatrixXd inverse;  // r' W r
  VectorXd slope;    // r' W d
  MatrixXd excess;   // r' (W T W - n / 2 W) r

  void Set(const Pattern& pattern, const Point& point) {
    pattern.Deviations(point.mean(pattern.observed), deviations_, squares_);
    own_ = point.covariance(pattern.observed, pattern.observed);
    factor_.compute(own_);
    half_ = point.root(pattern.observed, Eigen::all);
    factor_.matrixL().solveInPlace(half_);
    factor_.matrixL().solveInPlace(deviations_);
    factor_.matrixL().solveInPlace(squares_);
    factor_.matrixL().transpose().solveInPlace<Eigen::OnTheRight>(squares_);
    squares_.diagonal().array() -= pattern.n / 2;
    inverse.noalias() = half_.transpose() * half_;
    slope.noalias() = half_.transpose() * deviations_;
    product_.noalias() = squares_ * half_;
    excess.noalias() = half_.transpose() * product_;
  }

 private:
  VectorXd deviations_;
  MatrixXd squares_, own_, half_, product_;
  Eigen::LLT<MatrixXd> factor_;
};

// Sums over the patterns of which the information is made.
struct Sums {
  MatrixXd means;     // n inverse
  MatrixXd products;  // elements of `inverse` (rows) times those of `excess`, then of `slope`
};

// The patterns go in batches, each a product of two matrices: this is what takes the time.
Sums SumPatterns(const CMissingPatterns& patterns, const Point& point, int threads) {
  constexpr std::size_t kBatch = 256;
  const Index p = point.mean.size();
  const Index pairs = p * (p + 1) / 2;
  const auto& all = patterns.Patterns();
  Sums sums{MatrixXd::Zero(p, p), MatrixXd::Zero(pairs, pairs + p)};
  MatrixXd left(pairs, kBatch), right(pairs + p, kBatch);
  VectorXd means = VectorXd::Zero(pairs);
  for (std::size_t first = 0; first < all.size(); first += kBatch) {
    const auto count = static_cast<Index>(std::min(kBatch, all.size() - first));
    ForTiles(threads, count, [&](Index tile, Index length) {
      Whitened one;
      for (Index k = tile; k < tile + length; ++k) {
        one.Set(all[first + static_cast<std::size_t>(k)], point);
        Stack(one.inverse, left.col(k));
        Stack(one.excess, right.col(k).head(pairs));
        right.col(k).tail(p) = one.slope;
      }
    });
    for (Index k = 0; k < count; ++k)
      means += all[first + static_cast<std::size_t>(k)].n * left.col(k);
    ForTiles(threads, pairs + p, [&](Index tile, Index length) {
      sums.products.middleCols(tile, length).noalias() +=
          left.leftCols(count) * right.block(tile, 0, length, count).transpose();
    });
  }
  for (Index i = 0; i < p; ++i) {
    for (Index j = 0; j < p; ++j) sums.means(i, j) = means(Place(i, j));
  }
  return sums;
}

// By means, then the elements of the covariance matrix's lower triangle, each in units in which
// complete cases would have the information 1. With E the derivative of S by an element and F by
// another: means n W; mean and element W E W d; elements tr(E W F (W T W - n / 2 W)). The lower
// triangle counts.
MatrixXd Information(const Sums& sums, double n, int threads) {
  const Index p = sums.means.rows();
  MatrixXd information = MatrixXd::Zero(p + sums.products.rows(), p + sums.products.rows());
  information.topLeftCorner(p, p) = sums.means / n;
  const auto& products = sums.products;
  // A variance has half of the information, and half of the terms.
  const auto unit = [n](Index a, Index b) {
    return (a == b ? std::sqrt(2) / 2 : 1) / std::sqrt(n);
  };
  ParallelFor(threads, p, [&](std::int64_t a) {
    for (Index b = 0; b <= a; ++b) {
      const Index row = p + Place(a, b);
      for (Index i = 0; i < p; ++i) {
        information(row, i) = (products(Place(i, a), products.rows() + b) +
                               products(Place(i, b), products.rows() + a)) *
                              unit(a, b) / std::sqrt(n);
      }
      for (Index c = 0; c <= a; ++c) {
        for (Index d = 0; d <= (c == a ? b : c); ++d) {
          information(row, p + Place(c, d)) =
              (products(Place(b, c), Place(a, d)) + products(Place(b, d), Place(a, c)) +
               products(Place(a, c), Place(b, d)) + products(Place(a, d), Place(b, c))) *
              unit(a, b) * unit(c, d);
        }
      }
    }
  });
  return information;
}

std::vector<std::pair<int, int>> NeverTogether(const CMissingPatterns& patterns) {
  const auto p = static_cast<int>(patterns.Center().size());
  Eigen::Matrix<bool, Eigen::Dynamic, Eigen::Dynamic> together =
      Eigen::Matrix<bool, Eigen::Dynamic, Eigen::Dynamic>::Zero(p, p);
  for (const Pattern& pattern : patterns.Patterns()) {
    for (const int a : pattern.observed) {
      for (const int b : pattern.observed) together(a, b) = true;
    }
  }
  std::vector<std::pair<int, int>> pairs;
  for (int a = 0; a < p; ++a) {
    for (int b = 0; b < a; ++b) {
      if (!together(a, b)) pairs.emplace_back(a, b);
    }
  }
  return pairs;
}

// a b' + b a' in the units of the information: the derivatives of a' x b by the elements of a
// symmetric matrix x, and the direction in which x changes with the element of L x L' where a and b
// are columns of L's inverse.
VectorXd Derivatives(const VectorXd& a, const VectorXd& b) {
  const Index p = a.size();
  VectorXd derivatives(p * (p + 1) / 2);
  Index k = 0;
  for (Index c = 0; c < p; ++c) {
    for (Index d = 0; d < c; ++d) derivatives(k++) = a(c) * b(d) + a(d) * b(c);
    derivatives(k++) = std::sqrt(2) * a(c) * b(c);
  }
  return derivatives;
}

// Directions without any information get some: what does not depend on them has the same errors
// with any.
void FillDirections(const std::vector<std::pair<int, int>>& pairs, const Point& point,
                    MatrixXd& information) {
  if (pairs.empty()) return;
  const Index p = point.mean.size();
  const MatrixXd inverse = point.root.triangularView<Lower>().solve(MatrixXd::Identity(p, p));
  MatrixXd directions(information.rows() - p, static_cast<Index>(pairs.size()));
  for (std::size_t k = 0; k < pairs.size(); ++k) {
    directions.col(static_cast<Index>(k)) =
        Derivatives(inverse.col(pairs[k].first), inverse.col(pairs[k].second));
  }
  const Eigen::HouseholderQR<MatrixXd> factor(directions);
  const MatrixXd basis =
      factor.householderQ() * MatrixXd::Identity(directions.rows(), directions.cols());
  information.bottomRightCorner(basis.rows(), basis.rows())
      .selfadjointView<Lower>()
      .rankUpdate(basis);
}

// Columns whose products are the covariances of the estimates: of the means, then of the elements
// of the lower triangle. Empty when the information is singular.
std::optional<MatrixXd> Roots(MatrixXd information, const Point& point, double n, int threads) {
  constexpr double kSmallest = 1e-7;  // EM does not come near a maximum that is as flat
  const Eigen::LLT<Eigen::Ref<MatrixXd>> factor(information);
  if (factor.info() != Eigen::Success || !(factor.rcond() > kSmallest)) return std::nullopt;
  const Index p = point.mean.size();
  const MatrixXd rows = point.root.transpose() / std::sqrt(n);
  MatrixXd roots = MatrixXd::Zero(information.rows(), information.cols());
  roots.topLeftCorner(p, p) = rows;
  for (Index a = 0; a < p; ++a) {
    for (Index b = 0; b <= a; ++b) {
      roots.col(p + Place(a, b)).tail(roots.rows() - p) =
          Derivatives(point.root.row(a).transpose(), rows.col(b));
    }
  }
  ForTiles(threads, roots.cols(), [&](Index tile, Index length) {
    factor.matrixL().solveInPlace(roots.middleCols(tile, length));
  });
  return roots;
}

void FillErrors(const MatrixXd& roots, const Point& point, const VectorXd& scale,
                IncompleteNormalErrors& errors) {
  const Index p = point.mean.size();
  const auto root = [&](Index i, Index j) { return roots.col(p + Place(i, j)); };
  errors.mean = scale.cwiseProduct(roots.leftCols(p).colwise().norm().transpose());
  errors.sd.resize(p);
  errors.covariance.resize(p, p);
  errors.correlation.setZero(p, p);
  for (Index i = 0; i < p; ++i) {
    const double sd = point.sd(i);
    errors.covariance(i, i) = scale(i) * scale(i) * root(i, i).norm();
    errors.sd(i) = scale(i) * root(i, i).norm() / (2 * sd);
    for (Index j = 0; j < i; ++j) {
      const double product = sd * point.sd(j);
      const double r = point.covariance(i, j) / product;
      const double error = (root(i, j) / product - r / (2 * sd * sd) * root(i, i) -
                            r / (2 * point.sd(j) * point.sd(j)) * root(j, j))
                               .norm();
      errors.covariance(i, j) = errors.covariance(j, i) = scale(i) * scale(j) * root(i, j).norm();
      errors.correlation(i, j) = errors.correlation(j, i) = error;
    }
  }
  for (const auto& [i, j] : errors.neverTogether) {
    for (MatrixXd* matrix : {&errors.covariance, &errors.correlation})
      (*matrix)(i, j) = (*matrix)(j, i) = std::numeric_limits<double>::quiet_NaN();
  }
}

// As if covariances were known.
void FillMeans(const CMissingPatterns& patterns, const Point& point,
               IncompleteNormalErrors& errors) {
  const Index p = point.mean.size();
  MatrixXd information = MatrixXd::Zero(p, p), own, half;
  for (const Pattern& pattern : patterns.Patterns()) {
    own = point.covariance(pattern.observed, pattern.observed);
    half = point.root(pattern.observed, Eigen::all);
    own.llt().matrixL().solveInPlace(half);
    information.selfadjointView<Lower>().rankUpdate(half.transpose(), pattern.n);
  }
  const Eigen::LLT<MatrixXd> factor(information);
  MatrixXd roots = point.root.transpose();
  factor.matrixL().solveInPlace(roots);
  errors.mean = patterns.Scale().cwiseProduct(roots.colwise().norm().transpose());
}

}  // namespace

IncompleteNormalErrors ComputeIncompleteNormalErrors(const CMissingPatterns& patterns,
                                                     const IncompleteNormalResult& result,
                                                     int threads) {
  IncompleteNormalErrors errors;
  errors.status = result.status;
  if (errors.status != EStatus::Ok) return errors;
  const Point point(patterns, result);
  errors.meansOnly = point.mean.size() > IncompleteNormalErrors::kMostVariables;
  errors.neverTogether = NeverTogether(patterns);
  if (errors.meansOnly) {
    FillMeans(patterns, point, errors);
    return errors;
  }
  const double n = patterns.N();
  MatrixXd information = Information(SumPatterns(patterns, point, threads), n, threads);
  FillDirections(errors.neverTogether, point, information);
  const auto roots = Roots(std::move(information), point, n, threads);
  if (!roots) {
    errors.status = EStatus::NotPositiveDefinite;
    return errors;
  }
  FillErrors(*roots, point, patterns.Scale(), errors);
  return errors;
}

}  // namespace stats
