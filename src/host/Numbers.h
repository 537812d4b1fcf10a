// Numbers as text, in the C locale whatever the user's locale is.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "host/Types.h"

// A number at the start of a text.
struct ParsedNumber {
  double value = 0;
  std::size_t length = 0;  // characters consumed, leading blanks included
};

// Reads a decimal number as a stream extraction does: leading blanks are skipped, a sign of either
// kind is accepted, characters are taken while they can continue a number, and all that was taken
// must be one ("1e" is not). Words such as "nan" and "inf" are no numbers; too large a number is
// none either; too small a one is 0 or subnormal. Empty when there is no number.
std::optional<ParsedNumber> ParseNumber(std::string_view text);

// The shortest text that reads back as the same double; integral values below 2^53 as plain digits.
CString FormatShortest(double value);

// As printf formats it with "%*.*f".
CString FormatFixed(double value, int width, int decimals);

// As printf formats it with "%15.6G", appended to `out`.
void AppendDumpValue(double value, CString& out);
