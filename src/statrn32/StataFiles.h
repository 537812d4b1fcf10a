// Stata data files (.dta), versions 104 to 119.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsDta(std::string_view first);

std::unique_ptr<CReader> ReadDta();
// Version 118, whose text is UTF-8.
std::unique_ptr<CWriter> WriteDta();

extern const NAME_RULES kDtaNames;
extern const LIMITS kDtaLimits;

}  // namespace statrn32
