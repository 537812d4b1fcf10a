// A field of a text file as a number.
#pragma once

#include <optional>
#include <string>

#include "host/Numbers.h"

// The number at the start of `text` as a stream extraction reads it, where the exponent may also be
// marked by "D" ("1.5D+03"). Empty when there is none.
std::optional<ParsedNumber> ParseDataNumber(const std::string& text);

// Prepares the text of a number with another decimal mark for the function above: the mark becomes
// a point, and what was a point ends the number.
void PutPoint(char mark, std::string& text);

// The same as the first, or `defaultValue` when there is none.
double ConvertData(const std::string& text, double defaultValue);
