// The normal variable behind an ordinal one whose thresholds are known.
#pragma once

#include <vector>

#include "engine/stats/Status.h"

namespace stats {

// Mean and standard deviation of the normal variable behind an ordinal one whose thresholds are
// known, by maximum likelihood; with two categories the standard deviation is 1. The tests compare
// the frequencies with what the model gives (`fitted`), and with a standard normal variable cut at
// these thresholds (`standard`).
// Status: BadArgument (thresholds do not ascend or do not fit the categories), ZeroWeights,
// OneCategory, Boundary (all cases lie in two neighbouring categories or less: the standard
// deviation has no estimate), NotConverged.
struct FixedThresholdsResult {
  EStatus status = EStatus::BadArgument;
  double n = 0;
  double mean = 0, sd = 1, meanError = 0, sdError = 0;
  double logLikelihood = 0;
  struct Test {
    double likelihoodRatio = 0, p = 1;
    int df = 0;
  };
  Test fitted, standard;
};

FixedThresholdsResult EstimateUnderThresholds(const std::vector<double>& frequencies,
                                              const std::vector<double>& thresholds);

}  // namespace stats
