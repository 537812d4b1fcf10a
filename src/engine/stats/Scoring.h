// Maximum likelihood by Fisher scoring.
#pragma once

#include <algorithm>
#include <cmath>

#include <Eigen/Cholesky>
#include <Eigen/Core>

namespace stats {

// Mean log-likelihood of a table with its gradient and expected information.
struct Scoring {
  double value = -HUGE_VAL;  // where the parameters are not allowed
  Eigen::VectorXd gradient;
  Eigen::MatrixXd information;

  void Begin(Eigen::Index parameters) {
    value = 0;
    gradient.setZero(parameters);
    information.setZero(parameters, parameters);
  }
  // A cell with this share of the cases, its probability and the derivatives of that. False when
  // there are cases where none can be.
  bool Add(double share, double p, const Eigen::VectorXd& slope) {
    if (!(p > 0)) {
      if (share > 0) value = -HUGE_VAL;
      return !(share > 0);
    }
    if (share > 0) value += share * std::log(p);
    gradient += share / p * slope;
    information += slope * slope.transpose() / p;
    return true;
  }
};

// Maximum by Fisher scoring with halved steps; false when it is not reached.
template <typename Evaluate>
bool MaximiseByScoring(Eigen::VectorXd& x, Scoring& at, const Evaluate& evaluate) {
  constexpr int kMostIterations = 1000;
  constexpr double kSmallGradient = 1e-14;
  at = evaluate(x);
  for (int iteration = 0; iteration < kMostIterations && std::isfinite(at.value); ++iteration) {
    const double largest = at.gradient.cwiseAbs().maxCoeff();
    if (largest <= kSmallGradient) break;
    Eigen::VectorXd step = at.information.ldlt().solve(at.gradient);
    if (!step.allFinite()) return false;
    bool better = false;
    for (int halvings = 0; halvings < 40 && !better; ++halvings, step /= 2) {
      const Scoring next = evaluate(x + step);
      const double rounding = 1e-15 * std::fabs(at.value);
      better = next.value > at.value + rounding ||
               (next.value > at.value - rounding &&
                next.gradient.cwiseAbs().maxCoeff() < 0.999 * largest);
      if (!better) continue;
      x += step;
      at = next;
    }
    if (!better) break;
  }
  constexpr double kEnough = 1e-10;
  return std::isfinite(at.value) && at.gradient.cwiseAbs().maxCoeff() <= kEnough;
}

}  // namespace stats
