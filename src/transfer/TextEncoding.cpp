#include "transfer/TextEncoding.h"

#include <algorithm>
#include <array>

#include "host/Text.h"

namespace STUtils {
namespace {

using std::string_view_literals::operator""sv;

constexpr std::array<TextEncodingName, 4> kEncodings = {{
    {TextEncoding::Utf8, "UTF-8", "utf-8"},
    {TextEncoding::Windows1252, "Windows-1252", "windows-1252"},
    {TextEncoding::Utf16Little, "UTF-16, low byte first", "utf-16le"},
    {TextEncoding::Utf16Big, "UTF-16, high byte first", "utf-16be"},
}};

constexpr char32_t kReplacement = 0xFFFD;

std::string_view MarkOf(TextEncoding encoding) {
  switch (encoding) {
    case TextEncoding::Utf8:
      return "\xEF\xBB\xBF"sv;
    case TextEncoding::Utf16Little:
      return "\xFF\xFE"sv;
    case TextEncoding::Utf16Big:
      return "\xFE\xFF"sv;
    case TextEncoding::Windows1252:
      break;
  }
  return {};
}

// Text of 16 bits a character without a mark is mostly plain characters: half of its bytes are 0,
// on one side of the pairs.
std::optional<TextEncoding> DetectUtf16(std::string_view bytes) {
  const std::size_t pairs = bytes.size() / 2;
  std::size_t zeroFirst = 0;
  std::size_t zeroSecond = 0;
  for (std::size_t i = 0; i < pairs; ++i) {
    zeroFirst += bytes[2 * i] == 0 ? 1 : 0;
    zeroSecond += bytes[2 * i + 1] == 0 ? 1 : 0;
  }
  if (zeroSecond > pairs / 2 && zeroFirst < pairs / 8 + 1) return TextEncoding::Utf16Little;
  if (zeroFirst > pairs / 2 && zeroSecond < pairs / 8 + 1) return TextEncoding::Utf16Big;
  return std::nullopt;
}

bool IsUtf8ButForItsEnd(std::string_view bytes) {
  constexpr std::size_t kLongest = 4;
  for (std::size_t cut = 0; cut < std::min(kLongest, bytes.size() + 1); ++cut) {
    if (IsUtf8(bytes.substr(0, bytes.size() - cut))) return true;
  }
  return false;
}

char32_t Unit(std::string_view bytes, std::size_t at, TextEncoding encoding) {
  const auto first = static_cast<unsigned char>(bytes[at]);
  const auto second = static_cast<unsigned char>(bytes[at + 1]);
  return encoding == TextEncoding::Utf16Big ? char32_t{first} << 8 | second
                                            : char32_t{second} << 8 | first;
}

constexpr bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

std::size_t AppendUtf16(std::string_view bytes, TextEncoding encoding, bool last,
                        std::string& text) {
  std::size_t at = 0;
  while (at + 2 <= bytes.size()) {
    char32_t character = Unit(bytes, at, encoding);
    std::size_t length = 2;
    if (IsHighSurrogate(character)) {
      if (at + 4 > bytes.size() && !last) return at;
      const char32_t low = at + 4 <= bytes.size() ? Unit(bytes, at + 2, encoding) : 0;
      if (IsLowSurrogate(low)) {
        character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
        length = 4;
      } else {
        character = kReplacement;
      }
    } else if (IsLowSurrogate(character)) {
      character = kReplacement;
    }
    AppendUtf8(character, text);
    at += length;
  }
  if (!last || at == bytes.size()) return at;
  AppendUtf8(kReplacement, text);
  return bytes.size();
}

void AppendWindows1252(std::string_view bytes, std::string& text) {
  while (!bytes.empty()) {
    const auto special = static_cast<std::size_t>(
        std::find_if(bytes.begin(), bytes.end(),
                     [](char c) { return static_cast<unsigned char>(c) >= 0x80; }) -
        bytes.begin());
    text += bytes.substr(0, special);
    if (special == bytes.size()) return;
    AppendUtf8(FromWindows1252(static_cast<unsigned char>(bytes[special])), text);
    bytes.remove_prefix(special + 1);
  }
}

}  // namespace

std::span<const TextEncodingName> TextEncodings() {
  return kEncodings;
}

const char* NameOfEncoding(TextEncoding encoding) {
  const auto row = std::find_if(kEncodings.begin(), kEncodings.end(),
                                [&](const auto& e) { return e.encoding == encoding; });
  return row->shown;
}

std::optional<TextEncoding> EncodingOfOption(std::string_view option) {
  for (const TextEncodingName& row : kEncodings) {
    if (EqualIgnoringCase(row.option, option)) return row.encoding;
  }
  return std::nullopt;
}

TextEncoding DetectEncoding(std::string_view firstBytes) {
  for (const TextEncodingName& row : kEncodings) {
    if (ByteOrderMark(firstBytes, row.encoding) > 0) return row.encoding;
  }
  if (const auto wide = DetectUtf16(firstBytes)) return *wide;
  return IsUtf8ButForItsEnd(firstBytes) ? TextEncoding::Utf8 : TextEncoding::Windows1252;
}

std::size_t ByteOrderMark(std::string_view firstBytes, TextEncoding encoding) {
  const std::string_view mark = MarkOf(encoding);
  return !mark.empty() && firstBytes.starts_with(mark) ? mark.size() : 0;
}

std::size_t AppendAsUtf8(std::string_view bytes, TextEncoding encoding, bool last,
                         std::string& text) {
  switch (encoding) {
    case TextEncoding::Utf16Little:
    case TextEncoding::Utf16Big:
      return AppendUtf16(bytes, encoding, last, text);
    case TextEncoding::Windows1252:
      AppendWindows1252(bytes, text);
      break;
    case TextEncoding::Utf8:
      text += bytes;
      break;
  }
  return bytes.size();
}

}  // namespace STUtils
