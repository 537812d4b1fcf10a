// How exact the estimates from an incomplete normal sample are.
#pragma once

#include <utility>
#include <vector>

#include "engine/stats/IncompleteNormal.h"

namespace stats {

// Standard errors from the observed information, the negative second derivatives of the likelihood
// of the observed values by means and covariances together (M. G. Kenward and G. Molenberghs,
// Statistical Science 13, 1998, 236-247): they hold when values are missing at random, that is
// depending on observed values, where the expected information and the means' own part of the
// observed one need values missing completely at random.
struct IncompleteNormalErrors {
  // NotConverged (the estimates are not at the maximum), NotPositiveDefinite (the information is
  // singular: in some direction there is none); then nothing else is given.
  EStatus status = EStatus::Ok;
  Eigen::VectorXd mean;
  // By the delta method, as those of correlations, whose diagonal is 0. Empty with `meansOnly`.
  Eigen::VectorXd sd;
  Eigen::MatrixXd covariance, correlation;
  // More than kMostVariables: the errors of the means alone, as if covariances were known.
  bool meansOnly = false;
  // Variables (the larger number first) without a case that has values of both: the likelihood
  // does not depend on their covariance; its elements of the matrices are NaN.
  std::vector<std::pair<int, int>> neverTogether;

  static constexpr int kMostVariables =
      50;  // 1,325 parameters: 40 MB; with 1,000 patterns a second
};

// In the units of the data. Does not depend on the number of threads (0: all processors).
IncompleteNormalErrors ComputeIncompleteNormalErrors(const CMissingPatterns& patterns,
                                                     const IncompleteNormalResult& result,
                                                     int threads = 1);

}  // namespace stats
