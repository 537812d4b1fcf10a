// Numbers that people type into the definition dialogs, read without further checks.
#pragma once

#include <cstdint>
#include <string_view>

// The number that a text begins with, 0 where it begins with none.
double LeadingNumber(std::string_view text);
// The same for a whole number, held to 32 bits.
std::int32_t LeadingInteger(std::string_view text);
