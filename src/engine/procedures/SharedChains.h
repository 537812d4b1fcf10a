// The chains of data augmentation, divided among the processes of a run.
#pragma once

#include "engine/run/EngineRun.h"
#include "engine/stats/Augmentation.h"

// Draws this process's share of the chains and takes the others from where they were drawn: the
// result is the same for any number of processes. False with the reason in `fault`, without a cause
// when the run was interrupted.
bool DrawSharedChains(ENGINERUN& run, const stats::CAugmentationSample& sample,
                      const stats::AugmentationStart& start, stats::AugmentationOptions options,
                      std::vector<stats::AugmentationChain>& chains, FAULT& fault);
