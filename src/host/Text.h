// Text at the edges of the component. Inside, text is bytes as they stand in a file; a file's bytes
// are either Windows-1252 or UTF-8 and nothing in the file says which.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/Types.h"

// Is `bytes` well-formed UTF-8 (plain ASCII included)?
bool IsUtf8(std::string_view bytes);

// A file's bytes as UTF-8 for people to read: bytes that are valid UTF-8 are taken as such,
// anything else as Windows-1252. Control characters become blanks.
CString TextForDisplay(std::string_view bytes);

// Text from a foreign file or the keyboard (UTF-8) as bytes to be stored: Windows-1252 when every
// character fits and the result does not read as UTF-8, otherwise UTF-8.
CString TextForFile(std::string_view utf8);

// The characters of a text; U+FFFD for each byte that is not UTF-8.
std::u32string CharactersOf(std::string_view utf8);

// Appends one character.
void AppendUtf8(char32_t c, CString& out);

// The character of a byte of Windows-1252; bytes without one stand for themselves.
char32_t FromWindows1252(unsigned char byte);

// `bytes` cut to at most `width` bytes; where they are UTF-8 the cut falls between characters.
CString CutText(std::string_view bytes, std::size_t width);

// Without blanks (space, tab, line ends) at either end.
std::string_view Trimmed(std::string_view text);

// Equal but for the case of ASCII letters?
bool EqualIgnoringCase(std::string_view a, std::string_view b);
