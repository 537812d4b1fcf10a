// A field of a text file as a number.
#pragma once

#include <optional>
#include <string>

#include "host/Numbers.h"

// The number at the start of `text` as a stream extraction reads it, where the exponent may also be
// marked by "D" ("1.5D+03"). Empty when there is none.
std::optional<ParsedNumber> ParseDataNumber(const std::string& text);

// The same, or `defaultValue` when there is none.
double ConvertData(const std::string& text, double defaultValue);
