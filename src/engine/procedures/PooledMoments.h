// Means, standard deviations and correlations of the completed data sets of an imputation, pooled.
#pragma once

#include "engine/procedures/ImputedValues.h"

// Reads each data set once, several at the same time. Writes nothing where a data set has a
// variable without variance. False with the reason in `fault`, without a cause when the run was
// interrupted.
bool WritePooledMoments(ENGINERUN& run, const MULTIPLEIMPUTATION& line,
                        const std::vector<INCOMPLETEVARIABLE>& variables,
                        const std::vector<CASEFUNCTION>& completions, FAULT& fault);
