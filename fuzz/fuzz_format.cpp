// The parser of format statements: whatever it is given, its fields stay within the limits that
// readers and writers count on.
#include <cstdint>
#include <cstdlib>

#include "datadoc/FormatStatement.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMost = 1000;
  const FORMATFIELDS format = ParseFormat({reinterpret_cast<const char*>(data), size}, kMost);
  if (format.fields.size() > kMost) std::abort();
  std::int32_t line = 0;
  for (const RANGE_KTQ& field : format.fields) {
    if (field.first < 0 || field.last < field.first || field.last >= kMostColumns) std::abort();
    if (field.decimals < 0 || field.decimals > kMostDecimals || field.line < line) std::abort();
    line = field.line;
  }
  return 0;
}
