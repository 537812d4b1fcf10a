// Work on several completed data sets at the same time.
#pragma once

#include <functional>

#include "engine/run/EngineRun.h"

// What is to be done with a data set, counted from 0, on up to so many threads. Called on several
// threads at the same time: it makes a source of its own and writes neither to the run's report nor
// of its progress. False with the reason in `fault`, without a cause when the run was interrupted.
using DataSetWork = std::function<bool(std::size_t dataSet, int threads, FAULT& fault)>;

// Has the work done on all data sets, and tells the run's progress meanwhile. Of several faults the
// first data set's counts.
bool ForDataSets(ENGINERUN& run, std::size_t count, const DataSetWork& work, FAULT& fault);
