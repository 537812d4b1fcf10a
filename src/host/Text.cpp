#include "host/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace {

// The characters of Windows-1252 from 0x80 to 0x9F; bytes without one stand for themselves (C1
// controls).
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// The code point at the start of `text` and its length in bytes; length 0 when the bytes are not
// UTF-8.
struct DecodedCharacter {
  char32_t codePoint = 0;
  std::size_t length = 0;
};

DecodedCharacter DecodeUtf8(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (byte(0) < 0x80) return {byte(0), 1};
  std::size_t length = 0;
  char32_t codePoint = 0;
  char32_t smallest = 0;
  if ((byte(0) & 0xE0) == 0xC0) {
    length = 2, codePoint = byte(0) & 0x1F, smallest = 0x80;
  } else if ((byte(0) & 0xF0) == 0xE0) {
    length = 3, codePoint = byte(0) & 0x0F, smallest = 0x800;
  } else if ((byte(0) & 0xF8) == 0xF0) {
    length = 4, codePoint = byte(0) & 0x07, smallest = 0x10000;
  } else {
    return {};
  }
  if (text.size() < length) return {};
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {};
    codePoint = codePoint << 6 | (byte(i) & 0x3F);
  }
  const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
  if (codePoint < smallest || codePoint > 0x10FFFF || surrogate) return {};
  return {codePoint, length};
}

std::optional<char> ToWindows1252(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
  for (std::size_t i = 0; i < kWindows1252.size(); ++i) {
    if (kWindows1252[i] == c) return static_cast<char>(0x80 + i);
  }
  return std::nullopt;
}

bool IsPlainAscii(std::string_view bytes) {
  for (const char c : bytes) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::u32string CharactersOf(std::string_view utf8) {
  constexpr char32_t kReplacement = 0xFFFD;
  std::u32string characters;
  while (!utf8.empty()) {
    const DecodedCharacter character = DecodeUtf8(utf8);
    characters += character.length == 0 ? kReplacement : character.codePoint;
    utf8.remove_prefix(std::max<std::size_t>(character.length, 1));
  }
  return characters;
}

void AppendUtf8(char32_t c, CString& out) {
  if (c < 0x80) {
    out += static_cast<char>(c);
    return;
  }
  if (c < 0x800) {
    out += static_cast<char>(0xC0 | c >> 6);
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | c >> 12);
    out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | c >> 18);
    out += static_cast<char>(0x80 | (c >> 12 & 0x3F));
    out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
  }
  out += static_cast<char>(0x80 | (c & 0x3F));
}

char32_t FromWindows1252(unsigned char byte) {
  return byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80] : char32_t{byte};
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = DecodeUtf8(bytes).length;
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

CString TextForDisplay(std::string_view bytes) {
  const bool utf8 = IsUtf8(bytes);
  CString shown;
  shown.reserve(bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) {
      shown += ' ';
    } else if (byte < 0x80 || utf8) {
      shown += c;
    } else {
      AppendUtf8(FromWindows1252(byte), shown);
    }
  }
  return shown;
}

CString TextForFile(std::string_view utf8) {
  CString narrow;
  narrow.reserve(utf8.size());
  for (std::string_view rest = utf8; !rest.empty();) {
    const DecodedCharacter character = DecodeUtf8(rest);
    const auto byte = character.length == 0 ? std::nullopt : ToWindows1252(character.codePoint);
    if (!byte) return CString(utf8);
    narrow += *byte;
    rest.remove_prefix(character.length);
  }
  // Bytes that happen to read as UTF-8 would be shown as other characters than these.
  if (!IsPlainAscii(narrow) && IsUtf8(narrow)) return CString(utf8);
  return narrow;
}

CString CutText(std::string_view bytes, std::size_t width) {
  if (bytes.size() <= width) return CString(bytes);
  if (!IsUtf8(bytes)) return CString(bytes.substr(0, width));
  std::size_t end = width;
  while (end > 0 && (static_cast<unsigned char>(bytes[end]) & 0xC0) == 0x80) --end;
  return CString(bytes.substr(0, end));
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n\v\f";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (LowerAscii(a[i]) != LowerAscii(b[i])) return false;
  }
  return true;
}
