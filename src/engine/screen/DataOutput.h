// The file of "RA": the selected and transformed data.
#pragma once

#include "engine/run/EngineRun.h"

// Appends the cases of this repetition. The variables are those of the SE lines, or all that are
// not dropped; cases without a weight stay. Missing cells are -999999. Returns false with the
// reason in `fault`.
bool SaveData(ENGINERUN& run, FAULT& fault);
