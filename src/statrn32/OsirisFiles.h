// OSIRIS data sets of type 1: a dictionary (.dct, .dict) and a file of data beside it.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsOsiris(std::string_view first);
// The data are looked for beside the dictionary under the same name: .dat, .data, .da, .raw, .txt.
std::unique_ptr<CReader> ReadOsiris();
// The data go into a .dat file beside the dictionary.
std::unique_ptr<CWriter> WriteOsiris();
extern const NAME_RULES kOsirisNames;
extern const LIMITS kOsirisLimits;

}  // namespace statrn32
