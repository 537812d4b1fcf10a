#include "host/Numbers.h"

#include <array>
#include <charconv>
#include <cmath>

#include "host/ShortestNumber.h"

namespace {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Where the characters that can continue a decimal number end, counted from the sign.
std::size_t NumberEnd(std::string_view text, std::size_t begin) {
  std::size_t at = begin;
  if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
  bool point = false;
  bool exponent = false;
  bool digits = false;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (IsDigit(c)) {
      digits = true;
    } else if (c == '.' && !point && !exponent) {
      point = true;
    } else if ((c == 'e' || c == 'E') && digits && !exponent) {
      exponent = true;
      if (at + 1 < text.size() && (text[at + 1] == '+' || text[at + 1] == '-')) ++at;
    } else {
      break;
    }
  }
  return at;
}

// Is this number, which is out of a double's range, on the small side (so that it reads as 0)?
bool IsTooSmall(const char* first, const char* last) {
  long long magnitude = 0;  // decimal exponent of the first significant digit
  bool significant = false;
  bool afterPoint = false;
  const char* at = first;
  for (; at != last && *at != 'e' && *at != 'E'; ++at) {
    if (*at == '.') {
      afterPoint = true;
    } else if (IsDigit(*at)) {
      significant = significant || *at != '0';
      if (significant && !afterPoint) ++magnitude;
      if (!significant && afterPoint) --magnitude;
    }
  }
  if (at == last) return magnitude <= 0;
  ++at;
  if (at != last && *at == '+') ++at;
  long long exponent = 0;
  const auto result = std::from_chars(at, last, exponent);
  if (result.ec == std::errc::result_out_of_range) return *at == '-';
  return magnitude + exponent < 0;
}

void AppendPadded(const char* first, const char* last, std::size_t width, CString& out) {
  const auto length = static_cast<std::size_t>(last - first);
  if (length < width) out.append(width - length, ' ');
  out.append(first, length);
}

}  // namespace

std::optional<ParsedNumber> ParseNumber(std::string_view text) {
  std::size_t begin = 0;
  while (begin < text.size() && IsBlank(text[begin])) ++begin;
  const std::size_t end = NumberEnd(text, begin);
  const char* first = text.data() + begin;
  const char* const last = text.data() + end;
  if (first != last && *first == '+') ++first;  // from_chars takes no plus sign
  if (first == last || *first == '+') return std::nullopt;

  double value = 0;
  const auto result = std::from_chars(first, last, value);
  if (result.ptr != last) return std::nullopt;
  if (result.ec == std::errc::result_out_of_range) {
    if (!IsTooSmall(first, last)) return std::nullopt;
    value = *first == '-' ? -0.0 : 0.0;
  } else if (result.ec != std::errc()) {
    return std::nullopt;
  }
  return ParsedNumber{value, end};
}

CString FormatShortest(double value) {
  std::array<char, kNumberBytes> buffer;
  return CString(buffer.data(), WriteShortest(value, buffer.data()));
}

CString FormatFixed(double value, int width, int decimals) {
  std::array<char, 512> buffer;  // the largest double has 309 digits before the point
  const int places = decimals < 0 ? 0 : (decimals > 100 ? 100 : decimals);
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::fixed, places);
  CString text;
  AppendPadded(buffer.data(), result.ptr, width < 0 ? 0 : static_cast<std::size_t>(width), text);
  return text;
}

void AppendDumpValue(double value, CString& out) {
  std::array<char, 32> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::general, 6);
  for (char* c = buffer.data(); c != result.ptr; ++c) {
    if (*c >= 'a' && *c <= 'z') *c = static_cast<char>(*c - 'a' + 'A');
  }
  AppendPadded(buffer.data(), result.ptr, 15, out);
}
