// Polychoric and polyserial correlations and those with censored variables, the pairs divided
// among the processes of a run.
#pragma once

#include "engine/run/EngineRun.h"
#include "engine/stats/NormalPair.h"
#include "engine/stats/Polychoric.h"
#include "engine/stats/Polyserial.h"

// All pairs; the result is the same for any number of processes. False with the reason in `fault`,
// without a cause when the run was interrupted.
bool EstimatePairs(ENGINERUN& run, const stats::CPairTables& tables,
                   stats::PolychoricMatrix& matrix, FAULT& fault);

// Every process has estimated every so many-th of the results, from that of its own number on; all
// get those of the others. False as above.
bool SharePolyserials(ENGINERUN& run, std::vector<stats::PolyserialResult>& results, FAULT& fault);

// The same for those of `pairs` that stand at these places.
bool ShareNormalPairs(ENGINERUN& run, const std::vector<std::size_t>& places,
                      std::vector<stats::NormalPairResult>& pairs, FAULT& fault);
