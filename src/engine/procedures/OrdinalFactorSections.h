// The sections of an ordinal factor analysis.
#pragma once

#include "engine/procedures/OrdinalFactorData.h"
#include "engine/stats/OrdinalFactorFit.h"
#include "engine/stats/Rotation.h"

struct ORDINALFACTORSOLUTION {
  stats::ELink link = stats::ELink::Probit;
  int factors = 0;
  stats::OrdinalFactorResult result;
  double residualVariance = 1;        // of the underlying variables given the factors
  Eigen::MatrixXd loadings;           // standardised, unrotated
  stats::VarimaxResult varimax;       // of them
  stats::OrdinalFactorScores scores;  // of the VARIMAX-rotated factors

  double FreeParameters() const {
    return static_cast<double>(result.parameters.Count()) - factors * (factors - 1) / 2.0;
  }
};

void WriteOrdinalFactorHistory(CReport& report, const stats::OrdinalFactorResult& result);
void WriteOrdinalFactorFit(ENGINERUN& run, const COrdinalFactorData& data,
                           const ORDINALFACTORSOLUTION& solution);
// Without standard errors when the estimation has not come to its end.
void WriteOrdinalFactorEstimates(CReport& report, const COrdinalFactorData& data,
                                 const ORDINALFACTORSOLUTION& solution, bool errors);
