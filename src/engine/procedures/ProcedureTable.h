// Which procedure is run by which function. A new one is a pair of files beside this one, a reader
// of its line in syntax/ProcedureCommands.cpp and a row of the table.
#pragma once

#include "engine/run/EngineRun.h"

// Writes the procedure's sections to the run's report. Returns false with the reason in `fault`,
// without a cause when the run was interrupted; what lets the run go on but fail at its end is
// added to the run's faults.
using ProcedureRunner = bool (*)(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);

// Null for a procedure that this engine does not have.
ProcedureRunner RunnerOf(const PROCEDURE& procedure);
