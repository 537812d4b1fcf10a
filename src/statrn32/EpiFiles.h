// Records of Epi Info 6 (.rec).
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsEpi(std::string_view first);
std::unique_ptr<CReader> ReadEpi();
std::unique_ptr<CWriter> WriteEpi();
extern const NAME_RULES kEpiNames;
extern const LIMITS kEpiLimits;

// What the field lines say. A line holds the name, behind "#" or "_", then eight numbers: two
// places with a colour between and behind, the type, the length, a colour; the question stands from
// column 46 on. A field of length 0 is only a question.
inline constexpr std::size_t kEpiQuestion = 45;   // where it begins, from 0
inline constexpr std::size_t kEpiLineBytes = 78;  // of the data in a line, before its mark
inline constexpr int kEpiText = 1;
inline constexpr int kEpiNumber = 100;  // and the decimals

}  // namespace statrn32
