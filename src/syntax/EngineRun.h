// Finding the engine, and running it to its end: what both programs' RunServer does.
#pragma once

#include "host/Types.h"

class CProgress;

// The engine's program file: the environment variable VEX_ENGINE, else `setting`, else "torvik"
// beside the running program. Each is taken only when it is not empty; what is named but cannot be
// run is an error, never passed over. Empty, with the reason, when there is none.
CString FindEngine(const CString& setting, CString& reason);

// Is it a program that we may run? When not, the reason names it.
bool CanBeRun(const CString& engine, CString& reason);

// Runs `engine` and comes back when it has ended, telling `progress` meanwhile; when that asks to
// stop, the run is cancelled. Names without a folder are those of `folder` (empty: ours). The
// result is as CEngineProcess::Result has it; `reason` as Reason().
int RunEngine(const CString& engine, const CString& syntaxFile, const CString& outputFile,
              const CString& folder, CProgress& progress, CString& reason);
