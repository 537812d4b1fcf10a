// Programs with their data: SPSS syntax, SAS programs, Stata do-files.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

// Read is what our own programs contain, and beyond them data in lists or in fixed columns, inside
// the program or in a file beside it. A command that changes the data otherwise stops the reading
// and is named.
std::unique_ptr<CReader> ReadSpssProgram();
std::unique_ptr<CReader> ReadSasProgram();
std::unique_ptr<CReader> ReadStataProgram();

// One file: the data stand inside the program, so that neither can be lost without the other.
std::unique_ptr<CWriter> WriteSpssProgram();
std::unique_ptr<CWriter> WriteSasProgram();
std::unique_ptr<CWriter> WriteStataProgram();

extern const NAME_RULES kSasProgramNames;
extern const LIMITS kSpssProgramLimits;
extern const LIMITS kSasProgramLimits;
extern const LIMITS kStataProgramLimits;

}  // namespace statrn32
