// Category probabilities of an ordinal variable given a linear predictor, fast and for many
// predictors at once.
#pragma once

#include <vector>

#include <Eigen/Core>

#include "engine/stats/OrdinalRegression.h"

namespace stats {

// P = F(upper - x) - F(lower - x) and, divided by P, the first and second derivatives of F at the
// two ends. An infinite end has derivatives 0. P is kept above 1e-300.
struct ResponseCells {
  Eigen::ArrayXd p;
  Eigen::ArrayXd upper1, lower1;  // F'
  Eigen::ArrayXd upper2, lower2;  // F''

  void Resize(Eigen::Index size);
};

// The normal distribution function comes from a table and its Taylor series: absolute error below
// 1e-14, relative one below 1e-9 down to probabilities of 1e-100.
class CResponseFunction {
 public:
  explicit CResponseFunction(ELink link);

  void Evaluate(double lower, double upper, const Eigen::ArrayXd& x, ResponseCells& cells) const;

  ELink Link() const { return link_; }
  // Of the variable behind the answers, given the factors: 1, or pi^2 / 3.
  double ResidualVariance() const;

 private:
  struct TailAndDensity {
    double tail, density;
  };
  TailAndDensity Normal(double distance) const;
  void EvaluateNormal(double lower, double upper, const Eigen::ArrayXd& x,
                      ResponseCells& cells) const;
  static void EvaluateLogistic(double lower, double upper, const Eigen::ArrayXd& x,
                               ResponseCells& cells);

  ELink link_;
  std::vector<TailAndDensity> table_;
};

}  // namespace stats
