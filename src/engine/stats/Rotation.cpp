#include "engine/stats/Rotation.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include <Eigen/LU>
#include <Eigen/QR>

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

// Turns two columns to their maximum. Returns the angle.
double TurnPair(MatrixXd& a, MatrixXd& transformation, Index i, Index j) {
  const auto x = a.col(i).array();
  const auto y = a.col(j).array();
  const Eigen::ArrayXd u = x.square() - y.square();
  const Eigen::ArrayXd v = 2 * x * y;
  const auto p = static_cast<double>(a.rows());
  const double numerator = 2 * ((u * v).sum() - u.sum() * v.sum() / p);
  const double denominator =
      (u.square() - v.square()).sum() - (u.sum() * u.sum() - v.sum() * v.sum()) / p;
  if (numerator == 0 && denominator == 0) return 0;
  const double angle = std::atan2(numerator, denominator) / 4;
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  for (MatrixXd* const matrix : {&a, &transformation}) {
    const VectorXd first = matrix->col(i);
    matrix->col(i) = c * first + s * matrix->col(j);
    matrix->col(j) = c * matrix->col(j) - s * first;
  }
  return std::fabs(angle);
}

}  // namespace

VarimaxResult RotateVarimax(const MatrixXd& loadings) {
  const Index k = loadings.cols();
  VectorXd length = loadings.rowwise().norm();
  for (double& l : length) l = l > 0 ? l : 1;
  MatrixXd a = length.cwiseInverse().asDiagonal() * loadings;
  MatrixXd turn = MatrixXd::Identity(k, k);
  constexpr int kMostSweeps = 2000;
  constexpr double kStill = 1e-14;
  for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
    double largest = 0;
    for (Index i = 0; i < k; ++i) {
      for (Index j = i + 1; j < k; ++j) largest = std::max(largest, TurnPair(a, turn, i, j));
    }
    if (largest < kStill) break;
  }
  const MatrixXd turned = loadings * turn;
  std::vector<Index> order(static_cast<std::size_t>(k));
  std::iota(order.begin(), order.end(), Index{0});
  std::stable_sort(order.begin(), order.end(), [&turned](Index i, Index j) {
    return turned.col(i).squaredNorm() > turned.col(j).squaredNorm();
  });
  VarimaxResult result{MatrixXd(turned.rows(), k), MatrixXd(k, k)};
  for (Index j = 0; j < k; ++j) {
    const Index from = order[static_cast<std::size_t>(j)];
    const double sign = turned.col(from).sum() < 0 ? -1 : 1;
    result.loadings.col(j) = sign * turned.col(from);
    result.transformation.col(j) = sign * turn.col(from);
  }
  return result;
}

PromaxResult RotatePromax(const MatrixXd& varimaxLoadings, double power) {
  const Index k = varimaxLoadings.cols();
  if (k < 2) return {varimaxLoadings, MatrixXd::Identity(k, k)};
  const MatrixXd target = varimaxLoadings.array() * varimaxLoadings.array().abs().pow(power - 1);
  const MatrixXd turn = varimaxLoadings.householderQr().solve(target);
  const MatrixXd inverse = (turn.transpose() * turn).inverse();
  const VectorXd scale = inverse.diagonal().cwiseSqrt();
  PromaxResult result;
  result.loadings = varimaxLoadings * turn * scale.asDiagonal();
  const VectorXd shrink = scale.cwiseInverse();
  result.correlation = shrink.asDiagonal() * inverse * shrink.asDiagonal();
  return result;
}

}  // namespace stats
