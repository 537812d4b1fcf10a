// One number of a text data file: its text as a value, and a value as text for a given room.
#pragma once

#include <cstdint>
#include <string_view>

#include "host/Types.h"

enum class FieldState : std::uint8_t {
  Number,  // all of it is the number
  Blank,   // nothing there: 0
  Text,    // no number, or one that no double can hold: 0
  Part     // a number with something behind it
};

// The number at the start of `text`, which may have an exponent marked by E or D. Where `decimals`
// is above 0 and the text has no point of its own, one stands before its last `decimals`
// characters: "12345" with 2 is 123.45, and "5" is 0.05.
double ReadField(std::string_view text, int decimals, FieldState& state);

// Writes `value` into `width` characters at `out`, blanks before it, so that ReadField gives the
// same value again: with 6 decimals where they fit, else with as many as do, else in any form that
// does. False when there is none.
bool WriteField(double value, int width, int decimals, char* out);

// Appends `value` with 6 decimals where that reads back as it was, else the shortest text that
// does. False for what is no finite number.
bool AppendFreeNumber(double value, CString& out);
