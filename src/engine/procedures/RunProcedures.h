// A run that asks for procedures.
#pragma once

#include "engine/run/EngineRun.h"

// Is the file of TH read by this job and not written?
bool ReadsThresholds(const JOB& job);

// Runs the procedures in the order of their lines; then the screening where the output line asks
// for something of it (a moment matrix, tables); then saves the data. Returns false with the reason
// in `fault`, without a cause when the run was interrupted.
bool RunProcedures(ENGINERUN& run, FAULT& fault);
