// The sections about bootstrap samples.
#pragma once

#include "engine/bootstrap/Samples.h"

// Heading, how the samples were drawn, and those without estimates.
void WriteBootstrapHeading(ENGINERUN& run, const CString& title, const BOOTSTRAPSAMPLES& samples);

// A table for each set of estimates: the estimate, its bias and standard error, percentile and
// bias-corrected intervals. The parameters, fixed ones left out, are those of all the data, in the
// order of the samples' values.
void WriteBootstrapTables(ENGINERUN& run, const std::vector<ESTIMATES>& whole,
                          const BOOTSTRAPSAMPLES& samples);
