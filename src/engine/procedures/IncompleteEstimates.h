// What EM found out, with standard errors: the sections of means, covariances and correlations.
#pragma once

#include "engine/procedures/IncompleteSample.h"

// Behind the sample's Estimate. Standard errors that there are none of are left out, and the report
// says why.
void WriteIncompleteEstimates(ENGINERUN& run, const CIncompleteSample& sample);
