// Matlab's MAT-files.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

// Levels 4, 5 (also compressed) and 7.3.
bool IsMatlab(std::string_view first);
// Read by matio in a process of its own.
std::unique_ptr<CReader> ReadMatlab();
// Level 5, one column vector a variable; texts are the rows of a matrix of characters.
std::unique_ptr<CWriter> WriteMatlab();
extern const NAME_RULES kMatlabNames;
extern const LIMITS kMatlabLimits;

}  // namespace statrn32
