// The first pass over the cases of a regression: what its estimators need to know before they
// search, and a sample in which they look for a good start.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include <Eigen/Core>

#include "engine/stats/CrossProducts.h"
#include "engine/stats/RegressionCases.h"

namespace stats {

// The smallest and the largest value with the weights of the cases that have them.
struct ValueRange {
  double low = HUGE_VAL, high = -HUGE_VAL;
  double atLow = 0, atHigh = 0;

  void Add(double value, double weight);
  void Merge(const ValueRange& other);
};

// Cases in memory: x and y behind them, case after case; weights where there are any.
class CRegressionSample {
 public:
  explicit CRegressionSample(int x = 0) : x_(x) {}
  std::int64_t Cases() const { return static_cast<std::int64_t>(cells_.size()) / (x_ + 1); }
  double N() const;  // sum of weights
  void Add(const double* cells, const double* weight);
  void Merge(const CRegressionSample& other);

  // Counts y from now on by its place among these ascending values; other ones have no cases here.
  void Code(const std::vector<double>& values);
  RegressionPass Pass() const;

 private:
  int x_;
  std::vector<double> cells_, weights_;
  std::vector<std::uint8_t> codes_;
};

class CRegressionSurvey {
 public:
  // Takes a case whose number is a multiple of `step` to the sample; 0 for none.
  explicit CRegressionSurvey(int x, std::int64_t step = 0);

  // One without cases, for a piece of them.
  CRegressionSurvey WithoutCases() const { return CRegressionSurvey(x_, step_); }
  // Complete cases, x with y behind them. `numbers`: the cases' numbers, or null.
  void Add(const CaseBlock& cases, const std::int64_t* numbers);
  void Merge(const CRegressionSurvey& other);

  int X() const { return x_; }
  const CCrossProducts& Products() const { return products_; }  // of x, and y behind them
  const ValueRange& Range() const { return range_; }            // of y
  CRegressionSample& Sample() { return sample_; }
  const CRegressionSample& Sample() const { return sample_; }

 private:
  int x_;
  std::int64_t step_;
  CCrossProducts products_;
  ValueRange range_;
  CRegressionSample sample_;
};

// Means and standard deviations (divisor n - 1) of x; status Constant, NotPositiveDefinite
// (collinear) with `variable`, TooFewCases, NoCases, ZeroWeights, NotFinite.
struct RegressorScale {
  EStatus status = EStatus::NoCases;
  int variable = -1;
  double n = 0;
  Eigen::VectorXd mean, sd;
  Eigen::MatrixXd correlation;
  double smallestPivot = 1;  // the smallest share of an x's variance that those before it leave
};
RegressorScale ScaleRegressors(const CRegressionSurvey& survey);

// A pass at given parameters; as for MaximiseLikelihood.
using LikelihoodOver = std::function<bool(const RegressionPass& pass, const Eigen::VectorXd& at,
                                          LikelihoodSums& sums)>;

// Newton's method over all cases, from the sample's maximum where there is a sample and it has one.
NewtonResult MaximiseFromSample(Eigen::VectorXd start, double n, const RegressionPass& pass,
                                const CRegressionSample& sample, const LikelihoodOver& evaluate);

}  // namespace stats
