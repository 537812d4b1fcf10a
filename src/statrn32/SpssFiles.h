// SPSS data files (.sav, .zsav) and portable files (.por).
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsSav(std::string_view first);
bool IsPor(std::string_view first);

std::unique_ptr<CReader> ReadSav();
std::unique_ptr<CReader> ReadPor();
// A .sav compressed by bytecodes; a .zsav, chosen by the file's extension, by blocks of zlib.
std::unique_ptr<CWriter> WriteSav();
// Text in a portable file is plain ASCII: other letters are written as the nearest one.
std::unique_ptr<CWriter> WritePor();

extern const NAME_RULES kSavNames;
extern const LIMITS kSavLimits;
extern const NAME_RULES kPorNames;
extern const LIMITS kPorLimits;

}  // namespace statrn32
