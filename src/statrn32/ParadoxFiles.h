// Paradox tables (.db).
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsParadox(std::string_view first);
std::unique_ptr<CReader> ReadParadox();
std::unique_ptr<CWriter> WriteParadox();
extern const NAME_RULES kParadoxNames;
extern const LIMITS kParadoxLimits;

}  // namespace statrn32
