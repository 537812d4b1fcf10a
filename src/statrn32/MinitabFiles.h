// Minitab portable worksheets (.mtp).
//
// Text in lines of 80 characters. The first begins with a mark. For each stored thing follow a line
// with "%", four numbers of 7 characters (its kind, its number, how many values, their type), a
// blank and the name; then the values, five a line of 16 characters each. Lines that are not full
// of values end with a dot in the last place.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

inline constexpr std::string_view kMinitabMark = "Minitab Portable Worksheet";
inline constexpr int kMinitabColumn = 3;   // a kind
inline constexpr int kMinitabNumbers = 0;  // a type
inline constexpr double kMinitabMissing = 1.23456e30;

bool IsMinitabPortable(std::string_view first);
std::unique_ptr<CReader> ReadMinitab();
std::unique_ptr<CWriter> WriteMinitab();
extern const NAME_RULES kMinitabNames;
extern const LIMITS kMinitabLimits;

}  // namespace statrn32
