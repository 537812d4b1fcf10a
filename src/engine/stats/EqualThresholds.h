// Whether two ordinal variables have the same thresholds.
#pragma once

#include <vector>

#include "engine/stats/PairTables.h"
#include "engine/stats/Status.h"

namespace stats {

// The underlying bivariate normal model of a square table with thresholds and correlation estimated
// together by maximum likelihood, once with the same thresholds for both variables and once with
// thresholds of their own; the likelihood ratio has as many degrees of freedom as thresholds.
// Fisher scoring.
// Status: BadArgument (the table is not square, or a category has no case in one of the variables),
// ZeroWeights, OneCategory, Boundary (as for polychoric correlations), NotConverged.
struct EqualThresholdsResult {
  EStatus status = EStatus::BadArgument;
  double n = 0;
  std::vector<double> threshold, standardError;       // equal ones
  double r = 0, rError = 0;                           // with equal thresholds
  std::vector<double> rowThreshold, columnThreshold;  // free ones, joint estimates
  double rFree = 0;
  double logLikelihoodEqual = 0, logLikelihoodFree = 0;
  double ratio = 0, p = 1;
  int df = 0;
  double gradient = 0;  // the largest one, of the mean log-likelihoods
};

EqualThresholdsResult TestEqualThresholds(const FrequencyTable& table);

}  // namespace stats
