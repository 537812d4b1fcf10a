#include "dataview/DisplayPattern.h"

#include <algorithm>
#include <cmath>

#include "host/Numbers.h"

namespace {

constexpr std::size_t kPatternCharacters = 63;

CString Pattern(int width, int decimals, const char* middle) {
  const auto count = [](int n) {
    return std::min(static_cast<std::size_t>(std::max(n, 0)), kPatternCharacters);
  };
  CString pattern = CString(count(width - decimals - 2), '#') + middle;
  pattern.append(count(decimals), '#');
  pattern.resize(std::min(pattern.size(), kPatternCharacters));
  return pattern;
}

}  // namespace

CString CellPattern(int width, int decimals) {
  return Pattern(width, decimals, "0.");
}

CString HeadingPattern(int width, int decimals) {
  return Pattern(width, decimals, "#.");
}

CString FormatByPattern(double value, const CString& pattern) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Inf" : "Inf";
  const std::size_t point = std::min(pattern.find('.'), pattern.size());
  const CString places = point < pattern.size() ? pattern.substr(point + 1) : CString();
  CString text = FormatFixed(value, 0, static_cast<int>(places.size()));
  if (!places.empty()) {
    const std::size_t textPoint = text.size() - places.size() - 1;
    const std::size_t required = places.find_last_of('0');
    const std::size_t keep = required == CString::npos ? 0 : required + 1;
    while (text.size() > textPoint + 1 + keep && text.back() == '0') text.pop_back();
    if (text.back() == '.') text.pop_back();
  }
  const bool showsZero = point > 0 && pattern[point - 1] == '0';
  const std::size_t firstDigit = text.starts_with('-') ? 1 : 0;
  if (!showsZero && text.compare(firstDigit, 2, "0.") == 0) text.erase(firstDigit, 1);
  return text == "-0" ? "0" : text;
}
