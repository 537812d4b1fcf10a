// JSON lines: a text file with one JSON object a record.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsJsonLines(std::string_view first);

// A variable for each name that stands in any record, in the order in which they come. Lists and
// objects inside a record are left out.
std::unique_ptr<CReader> ReadJsonLines();
std::unique_ptr<CWriter> WriteJsonLines();

extern const LIMITS kJsonLimits;

}  // namespace statrn32
