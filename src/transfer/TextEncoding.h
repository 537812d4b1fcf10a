// The character encodings of text files that are imported.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace STUtils {

enum class TextEncoding { Utf8, Utf16Little, Utf16Big, Windows1252 };

struct TextEncodingName {
  TextEncoding encoding;
  const char* shown;   // to people
  const char* option;  // on the command line
};
// All of them, in the order in which they are offered.
std::span<const TextEncodingName> TextEncodings();
const char* NameOfEncoding(TextEncoding encoding);
std::optional<TextEncoding> EncodingOfOption(std::string_view option);

// What a file's first bytes say: a byte order mark; else zeros at every other place (16 bits a
// character); else whether they are UTF-8, where a character may be cut at the end.
TextEncoding DetectEncoding(std::string_view firstBytes);
// How many bytes a byte order mark of this encoding takes there; 0 when there is none.
std::size_t ByteOrderMark(std::string_view firstBytes, TextEncoding encoding);

// Appends `bytes` as UTF-8 and returns how many of them were used; what is left is the beginning of
// a character. With `last` nothing is left: a character that is cut becomes U+FFFD, as does a lone
// surrogate. UTF-8 itself is handed on as it stands.
std::size_t AppendAsUtf8(std::string_view bytes, TextEncoding encoding, bool last,
                         std::string& text);

}  // namespace STUtils
