// Numbers as people write them into pages and sheets.
#pragma once

#include <string_view>

namespace statrn32 {

enum class NUMBER_STYLE {
  Point,  // 1,234.5
  Comma,  // 1.234,5
};

// The whole text (blanks at its ends aside) as a number of the style: a sign, digits, groups of
// three between separators, a fraction, an exponent. False when it is none.
bool ParseNumberText(std::string_view text, NUMBER_STYLE style, double* number);

// Does the text read as a number with a decimal comma but not with a decimal point?
bool NeedsComma(std::string_view text);

}  // namespace statrn32
