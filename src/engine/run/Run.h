// One run of the engine, from the syntax file to the output file.
#pragma once

#include <cstdio>

#include "engine/parallel/Ranks.h"
#include "host/Types.h"

// The exit codes of the program.
enum class ERUNRESULT {
  Done = 0,
  Failed = 1,       // the output says why; without an output the reason stands on standard error
  Usage = 2,        // the program was called wrongly
  Interrupted = 3,  // the output says so
};

struct RUNOPTIONS {
  int threads = 0;                // 0: all processors
  std::FILE* progress = nullptr;  // where progress goes
  std::FILE* messages = nullptr;  // what stands in no output
  CRanks* ranks = nullptr;        // the processes that make the run together; null: this one
};

// Never throws. The output file is put in place at the end, whatever the result; it is left alone
// when it cannot be written or is the same file as the syntax or the data.
ERUNRESULT RunEngine(const CString& syntaxName, const CString& outputName,
                     const RUNOPTIONS& options);
