// Systat files (.syd), which a byte K begins.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsSystat(std::string_view first);
std::unique_ptr<CReader> ReadSystat();
std::unique_ptr<CWriter> WriteSystat();
extern const NAME_RULES kSystatNames;
extern const LIMITS kSystatLimits;

}  // namespace statrn32
