// Thresholds that are equal for several ordinal variables, or known.
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
