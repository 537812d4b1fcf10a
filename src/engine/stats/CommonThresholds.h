// Thresholds that several ordinal variables have in common.
#pragma once

#include <vector>

#include "engine/stats/PairTables.h"
#include "engine/stats/Status.h"

namespace stats {

// Several variables on the same cases: generalised least squares on their marginal thresholds with
// the covariance matrix of these, which follows from the two-way tables without further
// assumptions. chi-square is that of equality, with (variables - 1) thresholds degrees of freedom.
// `tables` is listwise. Status as above; NotPositiveDefinite when the thresholds' covariance matrix
// is singular.
struct CommonThresholdsResult {
  EStatus status = EStatus::BadArgument;
  double n = 0;
  std::vector<double> threshold, standardError;
  double chiSquare = 0, p = 1;
  int df = 0;
};

CommonThresholdsResult EstimateCommonThresholds(const CPairTables& tables);

}  // namespace stats
