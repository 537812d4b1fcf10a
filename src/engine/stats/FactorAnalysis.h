// Exploratory factor analysis of a correlation matrix.
#pragma once

#include <Eigen/Core>

#include "engine/stats/Status.h"

namespace stats {

// Uniquenesses are kept between this and 1; one that ends there is a Heywood case.
inline constexpr double kSmallestUniqueness = 0.005;

enum class EFactorMethod {
  // K. G. Joreskog, Psychometrika 32, 1967, 443-482: F = log |S| - log |R| + tr(R S^-1) - p with
  // S = L L' + U; L' U^-1 L is diagonal.
  MaximumLikelihood,
  // H. H. Harman and W. H. Jones, Psychometrika 31, 1966, 351-368: the sum of squares of the
  // residual correlations off the diagonal; L' L is diagonal.
  Minres,
};

// Fit of a model with `df` degrees of freedom; chi-square (n - 1) F, and with Bartlett's factor n -
// 1 - (2 p + 5) / 6 - 2 k / 3 (M. S. Bartlett, British Journal of Psychology, Statistical Section
// 3, 1950, 77-85). For MINRES F is the likelihood's discrepancy at its estimates. The baseline has
// no factors. A matrix that is not positive definite has no likelihood, and then only df and the
// residuals are known.
struct FactorFit {
  double df = 0;
  double rootMeanSquareResidual = 0;  // off the diagonal
  bool likelihood = false;
  double discrepancy = 0;
  double chiSquare = 0, p = 1;
  double bartlett = 0, pBartlett = 1;
  double baseline = 0, dfBaseline = 0;  // (n - 1) F of the baseline
  double rmsea = 0;                     // sqrt(max(0, (chiSquare - df) / (df (n - 1))))
  double tuckerLewis = 0;  // L. R. Tucker and C. Lewis, Psychometrika 38, 1973, 1-10; Bartlett's
                           // factors: that of the baseline has k = 0
};

// Status: BadArgument (no factor, or not fewer factors than variables), TooFewCases (negative df:
// more factors than the variables can tell apart), NotPositiveDefinite (maximum likelihood only),
// NotFinite, NotConverged.
struct FactorResult {
  EStatus status = EStatus::BadArgument;
  Eigen::VectorXd uniqueness;
  Eigen::MatrixXd loadings;  // p by k, by descending squares; each column adds up to 0 or more
  Eigen::MatrixXd residual;  // R - L L' - U
  Eigen::VectorXi heywood;   // 1 where the uniqueness is at its bound
  double minimum = 0;        // of the method's own function
  double gradient = 0;       // the largest one of a free uniqueness, at the end
  int iterations = 0;
  FactorFit fit;
};

// Newton's method with exact second derivatives in the uniquenesses (ML: their logarithms).
FactorResult EstimateFactors(const Eigen::MatrixXd& correlation, double n, int factors,
                             EFactorMethod method);

// ((p - k)^2 - p - k) / 2
double FactorDegreesOfFreedom(int variables, int factors);

// Weights of standardised variables for regression scores (G. H. Thomson, 1951; L. L. Thurstone,
// 1935): R^-1 L, p by k.
Eigen::MatrixXd RegressionScoreWeights(const Eigen::MatrixXd& correlation,
                                       const Eigen::MatrixXd& loadings);

}  // namespace stats
