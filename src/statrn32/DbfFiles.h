// dBASE files (.dbf): dBASE II to 7 and FoxPro, with the memo files beside them.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsDbf(std::string_view first);

std::unique_ptr<CReader> ReadDbf();
// dBASE III without memos, text in Windows-1252: what every program reads.
std::unique_ptr<CWriter> WriteDbf();

extern const NAME_RULES kDbfNames;
extern const LIMITS kDbfLimits;

}  // namespace statrn32
