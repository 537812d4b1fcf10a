// What a text file that is read and one that is written have in common.
#pragma once

#include <cstddef>
#include <cstdint>

namespace STUtils {

// Text and cells are moved in pieces that stay in the processor's cache.
inline constexpr std::size_t kTransferBytes = std::size_t{128} << 10;

// What stands between two values in a text file of this type; `own` is that of the type whose
// delimiter is asked for.
char TextSeparator(std::int32_t type, char own);

// Can this stand between fields, being no part of a number, a quote or a line end?
constexpr bool CanDelimit(char c) {
  const bool letter = (c | 0x20) >= 'a' && (c | 0x20) <= 'z';
  const bool ofNumber = (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
  const bool lineEnd = c == '\n' || c == '\r';
  return !letter && !ofNumber && !lineEnd && c != '"' && c != '\\' && c != 0 &&
         static_cast<unsigned char>(c) < 0x80;
}

template <typename CharT>
class basic_text_transfer_t {
 public:
  std::int32_t type = 0;  // 1001 to 1005
  CharT delimiter = 0;    // of the type that has none of its own

  CharT Separator() const { return TextSeparator(type, delimiter); }
};

}  // namespace STUtils
