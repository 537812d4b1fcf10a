#include "statrn32/NumberText.h"

#include <charconv>
#include <cmath>
#include <string>

#include "host/Text.h"

namespace statrn32 {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Digits, in groups of three once there is a separator; taken from the front of `text`.
bool TakeGroups(std::string_view* text, char separator, std::string* plain) {
  std::size_t group = 0;
  bool grouped = false;
  std::size_t at = 0;
  for (; at < text->size(); ++at) {
    const char c = (*text)[at];
    if (IsDigit(c)) {
      *plain += c;
      ++group;
    } else if (c == separator && group > 0 && (grouped ? group == 3 : group <= 3)) {
      grouped = true;
      group = 0;
    } else {
      break;
    }
  }
  text->remove_prefix(at);
  return !grouped || group == 3;
}

}  // namespace

bool ParseNumberText(std::string_view text, NUMBER_STYLE style, double* number) {
  const char point = style == NUMBER_STYLE::Point ? '.' : ',';
  const char separator = style == NUMBER_STYLE::Point ? ',' : '.';
  text = Trimmed(text);
  std::string plain;
  constexpr std::string_view kMinus = "\xE2\x88\x92";  // as it is printed
  if (text.substr(0, kMinus.size()) == kMinus) {
    plain = "-";
    text.remove_prefix(kMinus.size());
  } else if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    if (text.front() == '-') plain = "-";
    text.remove_prefix(1);
  }
  if (text.empty() || (!IsDigit(text.front()) && text.front() != point)) return false;
  if (!TakeGroups(&text, separator, &plain)) return false;
  if (!text.empty() && text.front() == point) {
    plain += '.';
    text.remove_prefix(1);
    while (!text.empty() && IsDigit(text.front())) {
      plain += text.front();
      text.remove_prefix(1);
    }
  }
  if (!text.empty() && (text.front() == 'e' || text.front() == 'E')) {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    plain.append("e").append(text);
    text = {};
  }
  const char* const end = plain.data() + plain.size();
  const auto [stop, failed] = std::from_chars(plain.data(), end, *number);
  return text.empty() && failed == std::errc() && stop == end && std::isfinite(*number);
}

bool NeedsComma(std::string_view text) {
  double number = 0;
  return !ParseNumberText(text, NUMBER_STYLE::Point, &number) &&
         ParseNumberText(text, NUMBER_STYLE::Comma, &number);
}

}  // namespace statrn32
