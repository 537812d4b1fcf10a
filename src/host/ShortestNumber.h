// Doubles as their shortest text, quickly: what an export writes millions of.
#pragma once

#include <cstddef>

// Room that one number needs while it is written.
inline constexpr std::size_t kNumberBytes = 40;

// Writes the shortest text that reads back as the same double, and integral values below 2^53 as
// plain digits. Returns the end of what was written; `out` has room for kNumberBytes.
//
// The text is the one of std::to_chars wherever that is not an integral value. Numbers of up to 14
// digits take a shorter way: scaled to an integer, which is proved right by dividing it back.
char* WriteShortest(double value, char* out);
