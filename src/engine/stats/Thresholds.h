// Thresholds of ordinal variables and normal scores, from frequencies of categories.
#pragma once

#include <vector>

#include "engine/stats/Status.h"

namespace stats {

// threshold[a] = normal quantile of the cumulative proportion F of the categories 0 ... a, for all
// but the last one. Standard error: sqrt(F (1 - F) / n) / density(threshold). Frequencies may be
// sums of weights. A category without cases makes its threshold equal to the one before (or minus
// infinity at the lower end, plus infinity at the upper end, with standard error 0); its index
// stands in `empty`. Status: NoCases (no categories), ZeroWeights (all frequencies zero), NotFinite
// (a negative or infinite frequency), OneCategory (fewer than two categories have cases).
struct ThresholdResult {
  EStatus status = EStatus::NoCases;
  double n = 0;
  std::vector<double> threshold;
  std::vector<double> standardError;
  std::vector<int> empty;
};

ThresholdResult EstimateThresholds(const std::vector<double>& frequencies);

// score[j] = the mean of a standard normal variable between the quantiles of the cumulative
// proportions below and up to value j: (density(t[j-1]) - density(t[j])) / proportion[j].
// rescaled[j] = the scores brought to the mean and the standard deviation (divisor n - 1) of
// `values`, both weighted with the frequencies. Values without cases get score 0 and the mean.
// `values` ascend. Status as above; Constant when one value only has cases; TooFewCases when n is
// not above 1.
struct NormalScoresResult {
  EStatus status = EStatus::NoCases;
  std::vector<double> score;
  std::vector<double> rescaled;
};

NormalScoresResult ComputeNormalScores(const std::vector<double>& values,
                                       const std::vector<double>& frequencies);

}  // namespace stats
