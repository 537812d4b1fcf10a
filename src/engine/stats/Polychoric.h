// Polychoric correlations by two-step maximum likelihood, and tests of the model behind them.
#pragma once

#include <vector>

#include <Eigen/Core>

#include "engine/stats/PairTables.h"
#include "engine/stats/Status.h"
#include "engine/stats/Thresholds.h"

namespace stats {

// U. Olsson, Psychometrika 44, 1979, 443-460 (two-step): the thresholds stay at their marginal
// values, the correlation maximises the likelihood of the table. Newton steps, kept between bounds;
// the mean gradient at the end is below 1e-12.
// Rows and columns without cases drop out. Empty cells are counted; nothing is added to them.
// Status: ZeroWeights, NotFinite, BadArgument (thresholds do not fit the table), OneCategory (a row
// or column variable has cases in one category only), Boundary (the likelihood still rises at |r| =
// 0.9999999: r is that bound with its sign and standardError is 0), NotConverged.
struct PolychoricResult {
  EStatus status = EStatus::ZeroWeights;
  double n = 0;
  double r = 0;
  // Both take the thresholds as known: from the observed information (second derivative at the
  // data) and from its expectation under the model. They agree where the model holds.
  double standardError = 0;
  double expectedStandardError = 0;
  double logLikelihood = 0;  // sum of frequency times log probability
  double gradient = 0;       // of the mean log-likelihood, at r
  int iterations = 0;
  int emptyCells = 0;  // among the rows and columns that have cases
};

PolychoricResult EstimatePolychoric(const FrequencyTable& table,
                                    const std::vector<double>& rowThresholds,
                                    const std::vector<double>& columnThresholds);

// With the thresholds of the table's own margins.
PolychoricResult EstimatePolychoric(const FrequencyTable& table);

// The underlying bivariate normal model against the saturated table (K. G. Joreskog, Psychometrika
// 59, 1994, 381-389): G2 = 2 sum n log(n / expected), X2 = sum (n - expected)^2 / expected, with
// df = r c - r - c for r rows and c columns that have cases. Where df is 0 (a 2 by 2 table) or the
// correlation has no estimate there is no test: df 0, p 1 and `status` other than Ok
// (TooFewCases for df 0). rmsea = sqrt(max(0, (G2 - df) / (n df))).
struct TableTest {
  EStatus status = EStatus::ZeroWeights;
  double likelihoodRatio = 0;  // G2
  double pearson = 0;          // X2
  int df = 0;
  double pLikelihoodRatio = 1;
  double pPearson = 1;
  double rmsea = 0;
};

TableTest TestUnderlyingNormality(const FrequencyTable& table,
                                  const std::vector<double>& rowThresholds,
                                  const std::vector<double>& columnThresholds, double r);

// Independence of rows and columns; df = (r - 1) (c - 1). rmsea is 0.
TableTest TestIndependence(const FrequencyTable& table);

// Probabilities of the cells under the model, row after row, each accurate relative to itself
// where it is not tiny; thresholds ascend and may be infinite at the ends. |r| < 1.
std::vector<double> CellProbabilities(const std::vector<double>& rowThresholds,
                                      const std::vector<double>& columnThresholds, double r);

// All pairs of `tables`. Thresholds come from each variable's own margin. A pair without an
// estimate has 0 in the matrix and its status in `pairs`; a variable with one category has status
// OneCategory in `thresholds`. The matrix is not repaired: ask CheckPositiveDefinite (Moments.h).
struct PolychoricMatrix {
  Eigen::MatrixXd correlation;
  std::vector<ThresholdResult> thresholds;  // by variable
  std::vector<PolychoricResult> pairs;      // by PairIndex
  bool Complete() const;                    // every pair has status Ok
};

PolychoricMatrix EstimatePolychoricMatrix(const CPairTables& tables, int threads = 1);

// The same with the pairs only whose PairIndex leaves the remainder `part` when divided by `parts`;
// SetCorrelations takes the correlations from `pairs` when those of the other parts are there too.
PolychoricMatrix EstimatePolychoricPart(const CPairTables& tables, int threads, int part,
                                        int parts);
void SetCorrelations(PolychoricMatrix& matrix);

}  // namespace stats
