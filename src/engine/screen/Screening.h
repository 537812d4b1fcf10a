// Screening: what a run without a procedure does.
#pragma once

#include "engine/run/EngineRun.h"

// Writes the sections of the screening to the run's report and its files. Returns false with the
// reason in `fault`, without a cause when the run was interrupted.
bool ScreenData(ENGINERUN& run, FAULT& fault);
