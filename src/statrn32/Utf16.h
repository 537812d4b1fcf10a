// UTF-16 of foreign files.
#pragma once

#include <string>
#include <string_view>

namespace statrn32 {

// Appends little-endian UTF-16 as UTF-8; half a pair becomes U+FFFD, an odd last byte is left out.
void AppendUtf16(std::string_view bytes, std::string* utf8);
// Appends bytes that are the code points U+0000 to U+00FF.
void AppendLatin1(std::string_view bytes, std::string* utf8);
// Appends one character.
void AppendCodePoint(char32_t character, std::string* utf8);

// UTF-8 as little-endian UTF-16; what is no UTF-8 becomes U+FFFD.
std::string Utf16Of(std::string_view utf8);

}  // namespace statrn32
