// The moment matrix of "MA" with means and standard deviations: product moments between continuous
// variables, correlations of underlying normal variables where ordinal ones are involved.
#pragma once

#include <Eigen/Core>

#include "engine/screen/CensoredPairs.h"
#include "engine/screen/OneVariable.h"
#include "engine/stats/AsymptoticCovariance.h"
#include "engine/stats/Moments.h"
#include "engine/stats/Polychoric.h"
#include "engine/stats/Polyserial.h"

// In the order of the analysis. An ordinal variable stands for an underlying one with mean 0 and
// standard deviation 1.
struct ANALYSISMOMENTS {
  Eigen::MatrixXd matrix;  // of the kind that was asked for; augmented: one row more
  Eigen::VectorXd means;
  Eigen::VectorXd deviations;                 // divisor n - 1
  double smallestN = 0;                       // over all elements
  std::vector<stats::CNormalMargin> margins;  // of all variables, when one of them is censored
};

// Correlations of ordinal variables with numeric ones: ordinal after ordinal, one for each numeric
// variable.
using POLYSERIALRESULTS = std::vector<stats::PolyserialResult>;

// Reads the cases once more and keeps the columns in memory, 8 bytes a numeric cell and 1 an
// ordinal one; the report says how much. Those with censored variables are left to
// EstimateCensoredPairs. Returns false with the reason in `fault`.
bool EstimatePolyserials(ENGINERUN& run, const SCREENVARIABLES& variables,
                         POLYSERIALRESULTS& results, FAULT& fault);

// `results` are asked for by the kinds with divisor n, and for censored variables. `moments` may be
// null without numeric variables, `polychoric` without pairs of ordinal ones; `censored` is empty
// without censored ones.
bool BuildMoments(ENGINERUN& run, const SCREENVARIABLES& variables, MOMENTS kind,
                  const ONEVARIABLERESULTS& results, const stats::CMoments* moments,
                  const stats::PolychoricMatrix* polychoric, const POLYSERIALRESULTS& polyserial,
                  const stats::NormalPairs& censored, ANALYSISMOMENTS& out, FAULT& fault);

// Prints matrix, means and standard deviations. A matrix that is not positive definite is a fault
// of the run.
void WriteMomentSection(ENGINERUN& run, const SCREENVARIABLES& variables,
                        const ANALYSISMOMENTS& moments);

// "PA" and "PV": the asymptotic covariances and variances of the matrix's elements.
void WriteAsymptoticSection(ENGINERUN& run, const SCREENVARIABLES& variables,
                            const stats::AsymptoticCovarianceResult& result);

// The files SM, ME, SD, AC, AV and TH, as far as they are asked for.
void SaveMoments(ENGINERUN& run, const ANALYSISMOMENTS& moments);
void SaveAsymptotic(ENGINERUN& run, const stats::AsymptoticCovarianceResult& result);
void SaveThresholds(ENGINERUN& run, const SCREENVARIABLES& variables,
                    const ONEVARIABLERESULTS& results);
