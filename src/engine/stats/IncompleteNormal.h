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
// pattern are the sums and products of their observed values. They are formed as soon as a pattern
// has more cases than observed values; until then its cases are kept, which takes less room. So
// memory grows with the patterns, and where each has many cases not with the cases. Values are
// counted in the given centers and scales.
class CMissingPatterns {
 public:
  struct Pattern {
    std::vector<int> observed, missing;  // variables
    std::int64_t cases = 0;
    double n = 0;  // sum of weights
    // Of the observed ones, empty as long as `rows` has the cases.
    Eigen::VectorXd sum;
    Eigen::MatrixXd products;  // about zero
    std::vector<double> rows;  // case after case, each with its weight in front

    // Sums of weights times deviations from `mean`, and of their products.
    void Deviations(const Eigen::VectorXd& mean, Eigen::VectorXd& deviations,
                    Eigen::MatrixXd& squares) const;
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
  static void AddCase(Pattern& pattern, double weight, const double* observed);

  Eigen::VectorXd center_, scale_;
  std::map<std::string, std::size_t> index_;
  std::vector<Pattern> patterns_;
  std::int64_t allMissing_ = 0;
  std::string key_, lastKey_;
  std::size_t last_ = 0;  // the pattern of lastKey_
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
  // What the last iteration added, in units of the variables' scales. EM converges most slowly
  // where most information is missing, and comes in from there.
  Eigen::VectorXd meanStep;
  Eigen::MatrixXd covarianceStep;
  // NotPositiveDefinite: variables that depend on each other, as far as they stand out.
  std::vector<int> dependent;
};
// Results do not depend on the number of threads (0: all processors).
IncompleteNormalResult EstimateIncompleteNormal(const CMissingPatterns& patterns, int iterations,
                                                double criterion, int threads = 1);

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
