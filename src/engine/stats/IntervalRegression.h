// Regression of the normal variable behind an ordinal one whose thresholds are known.
#pragma once

#include <vector>

#include "engine/stats/LocationScale.h"
#include "engine/stats/RegressionFit.h"

namespace stats {

// y* = b0 + x' b + e, e normal with standard deviation s; y is the category of y* between the given
// thresholds t: P(y <= category j) = Phi((t_j - b0 - x' b) / s). Newton's method in b / s and 1 /
// s, in which the likelihood is concave (as for censored variables: R. J. Olsen, Econometrica 46,
// 1978, 1211-1215); standard errors from the observed information, by the delta method, the
// thresholds taken as known. With two categories s is 1. Status: BadArgument (no x, thresholds that
// do not ascend or do not fit the categories); those of RegressorScale with `variable`;
// OneCategory; Boundary with `variable` -1 (all cases lie in two neighbouring categories: s has no
// estimate) or an x that tells the categories apart; NotConverged.
struct IntervalRegressionResult : RegressionFit, LocationScale {
  bool sdKnown = false;
  std::vector<double> frequency;  // by category
};

// `frequency`: sums of weights by category, which may be 0.
IntervalRegressionResult EstimateIntervalRegression(const RegressionPass& pass,
                                                    const CRegressionSurvey& survey,
                                                    const std::vector<double>& frequency,
                                                    const std::vector<double>& thresholds);

}  // namespace stats
