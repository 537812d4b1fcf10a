// How well an ordinal factor model reproduces the answers.
#pragma once

#include <vector>

#include "engine/stats/OrdinalFactorAnalysis.h"
#include "engine/stats/PairTables.h"

namespace stats {

// The two-way table of a pair of variables against the one that the model expects (W.-H. Chen and
// D. Thissen, Journal of Educational and Behavioral Statistics 22, 1997, 265-289): Pearson's
// chi-square with (rows - 1) (columns - 1) degrees of freedom, descriptive. `residual` is the root
// mean square of the differences of proportions.
struct PairFit {
  int first = 0, second = 0;
  double n = 0;
  double chiSquare = 0, df = 0;
  double residual = 0;
};
std::vector<PairFit> FitPairs(const CPairTables& tables, const OrdinalFactorParameters& parameters,
                              ELink link, int threads);

// All patterns of answers against what the model expects. `usable` when every case is complete and
// there are at least as many cases as possible patterns: otherwise most expected frequencies are
// too small for a test.
struct PatternFit {
  bool usable = false;
  double possible = 0;  // patterns
  double likelihoodRatio = 0, chiSquare = 0;
  double df = 0;
};
// `parameters` counts the free ones; `logLikelihoods` are those of the patterns.
PatternFit FitPatterns(const COrdinalPatterns& patterns, const Eigen::VectorXd& logLikelihoods,
                       double parameters);

}  // namespace stats
