// Correlations of censored variables with each other and with all other ones.
#pragma once

#include "engine/screen/OneVariable.h"
#include "engine/stats/MixedAcov.h"

// Reads the cases once more when a variable is censored and keeps the columns in memory; the report
// says how much. Without a censored variable `pairs` stays empty. The frequencies of ordinal
// variables are those of `tables`, or when that is null of the census. Returns false with the
// reason in `fault`.
bool EstimateCensoredPairs(ENGINERUN& run, const SCREENVARIABLES& variables,
                           const ONEVARIABLERESULTS& results, const stats::CPairTables* tables,
                           stats::NormalPairs& pairs, FAULT& fault);
