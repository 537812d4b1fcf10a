// MC: multiple imputation by data augmentation.
#pragma once

#include "engine/run/EngineRun.h"

// One completed data set takes the place of the data for the rest of the run; several become the
// job's completions.
bool RunMultipleImputation(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
