#include "host/ShortestNumber.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "host/ExactPowers.h"

namespace {

constexpr int kScaledDigits = 15;  // a scaled value stays below 10^15

// The eight digits of a number below 10^8, the first in the lowest byte: halves, quarters and
// digits are split off in all places at once.
std::uint64_t EightDigits(std::uint32_t number) {
  std::uint64_t word = number / 10000 | std::uint64_t{number % 10000} << 32;
  std::uint64_t high = (word * 10486 >> 20) & 0x0000007F0000007FU;
  word = high | (word - high * 100) << 16;
  high = (word * 103 >> 10) & 0x000F000F000F000FU;
  return high | (word - high * 10) << 8;
}

// A value's digits, from 10^8 on, without zeros at either end.
struct Decimal {
  char sixteen[32];  // zeros may stand around the digits; room to copy sixteen from anywhere
  int first = 0;     // of the digits, in `sixteen`
  int count = 0;
  int exponent = 0;  // of the first digit

  void Set(std::uint64_t scaled, int places) {
    const std::uint64_t front = EightDigits(static_cast<std::uint32_t>(scaled / 100'000'000));
    const std::uint64_t back = EightDigits(static_cast<std::uint32_t>(scaled % 100'000'000));
    const int zeros = back != 0 ? std::countl_zero(back) >> 3 : 8 + (std::countl_zero(front) >> 3);
    first = std::countr_zero(front) >> 3;
    count = 16 - first - zeros;
    exponent = 15 - first - places;
    const std::uint64_t texts[2] = {front | 0x3030303030303030U, back | 0x3030303030303030U};
    std::memcpy(sixteen, texts, sizeof texts);
  }
};

// Every decimal of up to 15 digits reads as a double of its own, so one that reads back as `value`
// is the only one of that length, and without its zeros the shortest. The quotient of two exact
// numbers is correctly rounded, which makes the division the same as reading the text.
bool AsShortDecimal(double value, Decimal& decimal) {
  const auto exponent = static_cast<int>(std::bit_cast<std::uint64_t>(value) >> 52) - 1023;
  // 10^above is above the value: (exponent + 1) x log10(2), rounded up.
  const int above = ((exponent + 1) * 1233 >> 12) + 1;
  const int places = kScaledDigits - above;
  if (places < 1 || places >= static_cast<int>(kPowersOfTen.size())) return false;
  const double power = kPowersOfTen[static_cast<std::size_t>(places)];
  const auto scaled = static_cast<std::uint64_t>(value * power + 0.5);
  if (static_cast<double>(scaled) / power != value) return false;
  decimal.Set(scaled, places);
  return true;
}

char* WriteWhole(std::int64_t number, char* out) {
  constexpr std::int64_t kEightDigits = 100'000'000;
  if (number <= -kEightDigits || number >= kEightDigits) {
    return std::to_chars(out, out + kNumberBytes, number).ptr;
  }
  if (number < 0) *out++ = '-';
  const std::uint64_t digits = EightDigits(static_cast<std::uint32_t>(std::abs(number)));
  const int zeros = std::min(std::countr_zero(digits) >> 3, 7);  // in front of the first digit
  const std::uint64_t text = (digits | 0x3030303030303030U) >> (8 * zeros);
  std::memcpy(out, &text, sizeof text);
  return out + 8 - zeros;
}

// Below 10^0; both of the exponent's digits are written.
char* WriteExponent(int exponent, char* out) {
  const int magnitude = -exponent;
  *out++ = 'e';
  *out++ = '-';
  *out++ = static_cast<char>('0' + magnitude / 10);
  *out++ = static_cast<char>('0' + magnitude % 10);
  return out;
}

// With or without an exponent, whichever is shorter; without where they are equal. Sixteen
// characters are copied at a time, whatever is behind those that are wanted.
char* WriteDecimal(const Decimal& decimal, char* out) {
  const char* const digits = decimal.sixteen + decimal.first;
  const int count = decimal.count;
  if (decimal.exponent >= 0) {
    const int whole = decimal.exponent + 1;
    std::memcpy(out, digits, 16);
    out[whole] = '.';
    std::memcpy(out + whole + 1, digits + whole, 16);
    return out + count + 1;
  }
  const int zeros = -decimal.exponent - 1;
  const int plain = 2 + zeros + count;
  const int scientific = count + (count > 1 ? 1 : 0) + 4;
  if (plain <= scientific) {
    std::memcpy(out, "0.00000000000000", 16);
    std::memcpy(out + 2 + zeros, digits, 16);
    return out + plain;
  }
  *out++ = *digits;
  if (count > 1) {
    *out++ = '.';
    std::memcpy(out, digits + 1, 16);
    out += count - 1;
  }
  return WriteExponent(decimal.exponent, out);
}

}  // namespace

char* WriteShortest(double value, char* out) {
  const double magnitude = std::fabs(value);
  if (magnitude < static_cast<double>(kExactIntegers)) {
    const auto whole = static_cast<std::int64_t>(value);
    if (static_cast<double>(whole) == value && (whole != 0 || !std::signbit(value))) {
      return WriteWhole(whole, out);
    }
  }
  Decimal decimal;  // filled where it is used
  if (magnitude >= 1e-7 && magnitude < 1e14 && AsShortDecimal(magnitude, decimal)) {
    if (value < 0) *out++ = '-';
    return WriteDecimal(decimal, out);
  }
  return std::to_chars(out, out + kNumberBytes, value).ptr;
}
