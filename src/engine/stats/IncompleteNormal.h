// Maximum likelihood from an incomplete sample of a multivariate normal distribution.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <Eigen/Core>

#include "engine/stats/Blocks.h"
#include "engine/stats/Status.h"

namespace stats {

// Cases by which of their values are missing. All that the likelihood needs of the cases of a
// pattern are the sums and products of their observed values, so that memory grows with the
// patterns and the square of the variables, never with the cases. Values are counted in the given
// centers and scales.
class CMissingPatterns {
 public:
  struct Pattern {
    std::vector<int> observed, missing;  // variables
    std::int64_t cases = 0;
    double n = 0;              // sum of weights
    Eigen::VectorXd sum;       // of the observed ones
    Eigen::MatrixXd products;  // sums of products about zero
  };

  CMissingPatterns(Eigen::VectorXd center, Eigen::VectorXd scale);

  // A case without a weight above zero is left out; one without any value is counted only.
  void Add(const CaseBlock& block);

  // In the order of their first cases, those without any value left out.
  const std::vector<Pattern>& Patterns() const { return patterns_; }
  const Eigen::VectorXd& Center() const { return center_; }
  const Eigen::VectorXd& Scale() const { return scale_; }
  std::int64_t AllMissing() const { return allMissing_; }
  std::int64_t Complete() const;
  double N() const;  // of the cases with any value

 private:
  Pattern& PatternOf(const double* cells);

  Eigen::VectorXd center_, scale_;
  std::map<std::string, std::size_t> index_;
  std::vector<Pattern> patterns_;
  std::int64_t allMissing_ = 0;
  std::string key_;
};

// EM (A. P. Dempster, N. M. Laird and D. B. Rubin, Journal of the Royal Statistical Society B 39,
// 1977, 1-38; J. L. Schafer, Analysis of Incomplete Multivariate Data, 1997, chapter 5), from means
// and variances of the observed values, by patterns. Converged when no mean and no element of the
// covariance matrix changes by more than `criterion`, in units of the variables' scales.
// Status: NoCases (no case has a value), TooFewCases (n not above the number of variables),
// NotPositiveDefinite (variables depend on each other: the likelihood has no maximum),
// NotConverged (the last values are given).
struct IncompleteNormalResult {
  EStatus status = EStatus::NoCases;
  Eigen::VectorXd mean;
  Eigen::MatrixXd covariance;          // divisor n
  std::vector<double> logLikelihoods;  // before each iteration, and at the end; never falling
  double change = 0;                   // the last one
  int iterations = 0;
};
IncompleteNormalResult EstimateIncompleteNormal(const CMissingPatterns& patterns, int iterations,
                                                double criterion);

// What is expected of missing values given the observed ones: B and a for each pattern, value =
// a + B observed, in the units of the data.
class CConditionalMeans {
 public:
  CConditionalMeans(const CMissingPatterns& patterns, const IncompleteNormalResult& result);

  // Copies a case and fills in its missing values (NaN); one without any value gets the means.
  // May be called from several threads.
  void Fill(const double* cells, double* filled) const;

 private:
  struct Conditional {
    std::vector<int> observed, missing;
    Eigen::VectorXd constant;
    Eigen::MatrixXd slopes;
  };
  std::map<std::string, Conditional> byPattern_;
  Eigen::VectorXd mean_;
};

}  // namespace stats
