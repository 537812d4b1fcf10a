// Polychoric correlations, the pairs divided among the processes of a run.
#pragma once

#include "engine/run/EngineRun.h"
#include "engine/stats/Polychoric.h"

// All pairs; the result is the same for any number of processes. False with the reason in `fault`,
// without a cause when the run was interrupted.
bool EstimatePairs(ENGINERUN& run, const stats::CPairTables& tables,
                   stats::PolychoricMatrix& matrix, FAULT& fault);
