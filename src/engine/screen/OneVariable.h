// The sections about single variables, and the numbers behind them that other sections use.
#pragma once

#include "engine/screen/Variables.h"
#include "engine/stats/Censored.h"
#include "engine/stats/Thresholds.h"
#include "engine/stats/Univariate.h"

// By place among the numeric or the ordinal variables.
struct ONEVARIABLERESULTS {
  std::vector<stats::UnivariateResult> numeric;
  std::vector<stats::CensoredResult> censored;  // of the numeric ones; used where the type says so
  std::vector<stats::ThresholdResult> thresholds;
};

ONEVARIABLERESULTS DescribeVariables(const SCREENVARIABLES& variables,
                                     const stats::CUnivariate* univariate);

// The type is a censored one.
stats::ECensoring CensoringOf(std::int32_t type);

// What cannot be described is noted as a fault of the run.
void WriteOrdinalSection(ENGINERUN& run, const SCREENVARIABLES& variables,
                         const ONEVARIABLERESULTS& results);
void WriteContinuousSection(ENGINERUN& run, const SCREENVARIABLES& variables,
                            const ONEVARIABLERESULTS& results);
void WriteCensoredSection(ENGINERUN& run, const SCREENVARIABLES& variables,
                          const ONEVARIABLERESULTS& results);
