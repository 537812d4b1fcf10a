// Exploratory factor analysis of ordinal variables by full-information maximum likelihood.
#pragma once

#include <vector>

#include <Eigen/Core>

#include "engine/stats/OrdinalFactorSums.h"
#include "engine/stats/Status.h"

namespace stats {

// A variable whose answers the factors explain to this part or more counts as a Heywood case.
inline constexpr double kLargestCommunality = 0.995;

enum class EFactorStep { Em, Newton, FinerQuadrature };

struct OrdinalFactorStep {
  EFactorStep next = EFactorStep::Em;
  double logLikelihood = 0;    // where the step begins
  double largestGradient = 0;  // there, of the mean log-likelihood of a case
};

// Maximises the likelihood of all answers that are there (R. D. Bock and M. Aitkin, Psychometrika
// 46, 1981, 443-459; F. Samejima, Psychometrika Monograph 17, 1969, for the ordered categories).
// EM: the expected complete log-likelihood of each variable, concave in its thresholds and slopes,
// is raised by a Newton step, halved until the likelihood of the answers does not fall. When the
// gradient is small, Newton's method on the likelihood of the answers itself goes on (observed
// information; the directions that only rotate the factors are held; steps halved likewise), and
// falls back to EM when no part of a step raises the likelihood. After three such steps, or steps
// of EM of which only a small part raises it, half as many points again are taken, as long as they
// can be gone through; the likelihood of the next step is that of the finer quadrature. Status:
// BadArgument (no factor, more than kMostFactors, no variable), NotFinite (the likelihood cannot be
// computed), Boundary (`variable` reaches kLargestCommunality: the likelihood has no maximum),
// NotConverged; NotPositiveDefinite (the information: the answers do not determine the parameters).
// With Boundary, NotConverged and NotPositiveDefinite the last parameters stand.
struct OrdinalFactorResult {
  EStatus status = EStatus::BadArgument;
  bool stopped = false;
  int variable = -1;
  OrdinalFactorParameters parameters;  // slopes' squares and products by columns: a diagonal matrix
  Eigen::MatrixXd information;         // observed, of the parameters in their order
  double logLikelihood = 0;
  double largestGradient = 0;
  int nodes = 0;  // of the quadrature at the end, in each dimension
  std::vector<OrdinalFactorStep> history;
};

struct OrdinalFactorOptions {
  int nodes = 0;  // in each dimension; 0: DefaultNodes
  int threads = 1;
  int mostSteps = 200;
  double gradient = 1e-9;  // of the mean log-likelihood of a case, at the end
  GoOn goOn;
  std::function<void(const OrdinalFactorStep&)> told;  // each step
};

int DefaultNodes(int factors);

OrdinalFactorResult EstimateOrdinalFactors(const COrdinalPatterns& patterns, ELink link,
                                           const OrdinalFactorParameters& start,
                                           const OrdinalFactorOptions& options);

// From loadings and thresholds of standardised underlying variables, such as polychoric
// correlations give them.
OrdinalFactorParameters StartingParameters(const Eigen::MatrixXd& loadings,
                                           const std::vector<std::vector<double>>& thresholds,
                                           ELink link);

// Loadings of the standardised underlying variables: slope / sqrt(residual variance + sum of
// squared slopes).
Eigen::MatrixXd StandardisedLoadings(const Eigen::MatrixXd& slopes, double residualVariance);

// The likelihood without factors: each variable's own proportions.
double IndependenceLogLikelihood(const COrdinalPatterns& patterns);

}  // namespace stats
