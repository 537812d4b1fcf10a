#include "dataview/definition/LeadingNumber.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <string>

double LeadingNumber(std::string_view text) {
  // The user's language may have another decimal mark.
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(std::string(text).c_str(), nullptr, plain);
}

std::int32_t LeadingInteger(std::string_view text) {
  const long long value = std::strtoll(std::string(text).c_str(), nullptr, 10);
  return static_cast<std::int32_t>(std::clamp<long long>(
      value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}
