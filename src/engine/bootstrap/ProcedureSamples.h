// Bootstrap samples of a procedure's estimates.
#pragma once

#include "engine/bootstrap/Samples.h"
#include "engine/procedures/ProcedureTable.h"

// Runs the procedure. With BS and a procedure that notes estimates it is then run on every sample
// too, and a section with their standard errors and intervals follows. Returns false with the
// reason in `fault`, without a cause when the run was interrupted.
bool RunWithSamples(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
