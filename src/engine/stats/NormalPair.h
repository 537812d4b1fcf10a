// The correlation of two normal variables of which at least one is seen through censoring.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/stats/NormalMargin.h"

namespace stats {

// The column of a variable: values of a numeric one, codes of an ordinal one.
struct PairColumn {
  const CNormalMargin* margin = nullptr;
  const double* values = nullptr;
  const std::uint8_t* codes = nullptr;

  SeenValue See(std::int64_t k) const {
    return margin->IsOrdinal() ? margin->See(codes[k]) : margin->See(values[k]);
  }
};

// Mean derivatives of the score by what the margin's parameters move.
struct MarginSlopes {
  double point = 0, square = 0;
  std::vector<double> edges;
};

// Two-step maximum likelihood on the bivariate normal distribution: the margins stay at their own
// estimates, the correlation maximises the likelihood of the pair. A case of which both are points
// contributes the bivariate density, a point and an interval the density of the point times the
// probability of the interval given it, two intervals the probability of the rectangle (J. Tobin,
// Econometrica 26, 1958, 24-36, for one variable; U. Olsson, F. Drasgow and N. J. Dorans,
// Psychometrika 47, 1982, 337-347, for point and interval). Parts that do not depend on the
// correlation are left out of `logLikelihood`.
// Status: that of the first margin without an estimate; NoCases, ZeroWeights (no case has both);
// Boundary (one variable is a function of the other), NotConverged.
struct NormalPairResult {
  EStatus status = EStatus::NoCases;
  std::int64_t cases = 0;
  double n = 0;
  double r = 0;
  double standardError = 0;  // the margins taken as known; observed information
  double logLikelihood = 0;
  double gradient = 0;  // of the mean log-likelihood
  int iterations = 0;
  // With status Ok, for influence values.
  double curve = 0;
  MarginSlopes first, second;
  std::vector<double> cellScores;  // by the two intervals, row after row
};

// The cases that both show something of, with a weight above zero. Those in two intervals are
// tabulated, the others gone through once an iteration. Memory: 32 bytes a case.
NormalPairResult EstimateNormalPair(const PairColumn& first, const PairColumn& second,
                                    std::int64_t cases, const double* weights = nullptr);

// The influence of a case on the correlation; the result has status Ok. A case without one of the
// two still counts through the margin of the other.
class CNormalPairInfluence {
 public:
  CNormalPairInfluence(const NormalPairResult& result, const CNormalMargin& first,
                       const CNormalMargin& second);
  double operator()(const SeenValue& first, const SeenValue& second) const;

 private:
  double Score(const SeenValue& first, const SeenValue& second) const;

  CNormalMargin first_, second_;
  double r_, n_, curve_;
  int columns_;
  std::vector<double> cellScores_;
  CNormalMargin::CInfluence byFirst_, bySecond_;
};

}  // namespace stats
