#include "statrn32/Utf16.h"

namespace statrn32 {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

char32_t UnitAt(std::string_view bytes, std::size_t at) {
  const auto low = static_cast<unsigned char>(bytes[at]);
  const auto high = static_cast<unsigned char>(bytes[at + 1]);
  return static_cast<char32_t>(low | high << 8);
}

bool IsHigh(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLow(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// The character at `at`, which moves behind it.
char32_t TakeCharacter(std::string_view utf8, std::size_t* at) {
  const auto lead = static_cast<unsigned char>(utf8[(*at)++]);
  if (lead < 0x80) return lead;
  const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
  char32_t character = more == 0 ? kReplacement : lead & (0x3FU >> more);
  for (int i = 0; i < more; ++i) {
    if (*at >= utf8.size() || (static_cast<unsigned char>(utf8[*at]) & 0xC0) != 0x80) {
      return kReplacement;
    }
    character = character << 6 | (static_cast<unsigned char>(utf8[(*at)++]) & 0x3FU);
  }
  return character;
}

void AppendUnit(char32_t unit, std::string* bytes) {
  *bytes += static_cast<char>(unit);
  *bytes += static_cast<char>(unit >> 8);
}

}  // namespace

void AppendCodePoint(char32_t c, std::string* utf8) {
  const auto tail = [&](int shift) { *utf8 += static_cast<char>(0x80 | (c >> shift & 0x3F)); };
  if (c < 0x80) {
    *utf8 += static_cast<char>(c);
  } else if (c < 0x800) {
    *utf8 += static_cast<char>(0xC0 | c >> 6);
    tail(0);
  } else if (c < 0x10000) {
    *utf8 += static_cast<char>(0xE0 | c >> 12);
    tail(6), tail(0);
  } else {
    *utf8 += static_cast<char>(0xF0 | (c >> 18 & 7));
    tail(12), tail(6), tail(0);
  }
}

void AppendUtf16(std::string_view bytes, std::string* utf8) {
  for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
    const char32_t unit = UnitAt(bytes, at);
    if (IsHigh(unit) && at + 4 <= bytes.size() && IsLow(UnitAt(bytes, at + 2))) {
      AppendCodePoint(0x10000 + ((unit - 0xD800) << 10) + (UnitAt(bytes, at + 2) - 0xDC00), utf8);
      at += 2;
    } else {
      AppendCodePoint(IsHigh(unit) || IsLow(unit) ? kReplacement : unit, utf8);
    }
  }
}

void AppendLatin1(std::string_view bytes, std::string* utf8) {
  for (const char c : bytes) AppendCodePoint(static_cast<unsigned char>(c), utf8);
}

std::string Utf16Of(std::string_view utf8) {
  std::string bytes;
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t c = TakeCharacter(utf8, &at);
    if (c < 0x10000) {
      AppendUnit(c, &bytes);
    } else {
      AppendUnit(0xD800 + ((c - 0x10000) >> 10), &bytes);
      AppendUnit(0xDC00 + ((c - 0x10000) & 0x3FF), &bytes);
    }
  }
  return bytes;
}

}  // namespace statrn32
