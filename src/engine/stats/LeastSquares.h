// Linear regression by least squares, in one stage and in two, with an intercept.
#pragma once

#include <vector>

#include <Eigen/Core>

#include "engine/stats/CrossProducts.h"
#include "engine/stats/Status.h"

namespace stats {

// The normal equations of centred variables, formed and solved with 33 digits: as good as an
// orthogonal decomposition with 16. A variable whose share of variance that the ones before it do
// not explain is below 1e-26 counts as collinear.
// Status: NoCases, ZeroWeights; NotFinite (`variable` as below); BadArgument (no x); TooFewCases (n
// not above the number of coefficients); Constant (`variable` -1: y; else the place among x),
// NotPositiveDefinite (collinear: `variable` is the first that depends on those before it; two
// stages: -1 when the instruments do not identify the coefficients), BadArgument (two stages: fewer
// instruments than x).
struct LeastSquaresResult {
  EStatus status = EStatus::NoCases;
  int variable = -1;
  double n = 0;
  // The intercept first.
  std::vector<double> coefficient, standardError, t, p;
  std::vector<double> standardised;       // by x: coefficient times sd(x) / sd(y)
  std::vector<double> varianceInflation;  // by x: 1 / (1 - R-square of x on the others)
  Eigen::MatrixXd covariance;             // of the coefficients
  double totalSquares = 0, regressionSquares = 0, residualSquares = 0;
  double rSquare = 0, adjustedRSquare = 0;
  double residualSd = 0;  // divisor: df2
  double f = 0, df1 = 0, df2 = 0, pF = 1;
  double logLikelihood = 0;  // under normality, the variance's divisor being n
  double smallestPivot = 1;  // the smallest unexplained share of variance of an x
};

// y and x are variables of `sums`.
LeastSquaresResult EstimateLeastSquares(const CCrossProducts& sums, int y,
                                        const std::vector<int>& x);

// Two stages (H. Theil, 1953; R. L. Basmann, Econometrica 25, 1957, 77-83): x is replaced by what
// the instruments z predict of it. An x that is exogenous stands in z too. rSquare is 1 - residual
// / total squares with the x themselves and may be negative; there is no F test of it.
struct TwoStageResult : LeastSquaresResult {
  // How far the instruments that are not among x predict each endogenous x beyond the exogenous
  // ones.
  struct FirstStage {
    int x = 0;  // place among x
    double f = 0, df1 = 0, df2 = 0, p = 1;
    double partialRSquare = 0;
  };
  std::vector<FirstStage> firstStages;
  // Overidentification (J. D. Sargan, Econometrica 26, 1958, 393-415): n times the R-square of the
  // residuals on the instruments; df 0: just identified, no test.
  double sargan = 0, dfSargan = 0, pSargan = 1;
};

TwoStageResult EstimateTwoStage(const CCrossProducts& sums, int y, const std::vector<int>& x,
                                const std::vector<int>& z);

}  // namespace stats
