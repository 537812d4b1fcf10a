#include "transfer/NumberLines.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

#include "host/ShortestNumber.h"

static_assert(std::endian::native == std::endian::little, "texts are stored as whole words");

namespace STUtils {
namespace {

constexpr int kLengthShift = 56;

// Added to a small whole number it leaves the number in the lowest bits of the sum.
constexpr double kShift = 4503599627370496.0;  // 2^52

}  // namespace

CNumberLines::CNumberLines(std::size_t variables, char separator)
    : variables_(variables), separator_(separator) {
  for (std::size_t number = 0; number < kTexts; ++number) {
    char text[sizeof(std::uint64_t)] = {};
    char* const end = std::to_chars(text, text + sizeof text, number).ptr;
    *end = separator;
    std::memcpy(&texts_[number], text, sizeof text);
    texts_[number] |= static_cast<std::uint64_t>(end + 1 - text) << kLengthShift;
  }
}

// Eight characters are stored whatever the length is, so that nothing depends on it. Zero with a
// sign, NaN and what has decimals differ in their bits from the whole number that was found.
inline char* CNumberLines::Put(double cell, char* out) const {
  const double sum = cell + kShift;
  const std::uint64_t number =
      std::bit_cast<std::uint64_t>(sum) - std::bit_cast<std::uint64_t>(kShift);
  if (number < kTexts &&
      std::bit_cast<std::uint64_t>(sum - kShift) == std::bit_cast<std::uint64_t>(cell)) {
    const std::uint64_t text = texts_[number];
    std::memcpy(out, &text, sizeof text);
    return out + (text >> kLengthShift);
  }
  if (!std::isnan(cell)) out = WriteShortest(cell, out);
  *out = separator_;
  return out + 1;
}

std::string_view CNumberLines::Text(std::span<const double> cells) {
  // A number and its separator, and what is stored behind the last one.
  const std::size_t room = cells.size() * (kNumberBytes + 1) + sizeof(std::uint64_t);
  if (buffer_.size() < room) buffer_.resize(room);
  char* out = buffer_.data();
  const double* cell = cells.data();
  const double* const end = cell + cells.size();
  while (cell != end) {
    for (const double* const next = cell + variables_; cell != next; ++cell) out = Put(*cell, out);
    out[-1] = '\n';
  }
  return {buffer_.data(), static_cast<std::size_t>(out - buffer_.data())};
}

}  // namespace STUtils
