// The quick way of reading a decimal number out of a block of text, for plain numbers with few
// digits: what an import reads millions of. Everything else is left to ParseNumber.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "host/ExactPowers.h"

static_assert(std::endian::native == std::endian::little, "eight characters are read as one word");

// Characters behind the text that ScanNumber may touch (without regard to what they hold).
inline constexpr std::size_t kNumberScanPadding = 32;

namespace number_scan {

inline constexpr std::array<std::uint64_t, 9> kWholePowers = {
    1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

// Reads up to eight digits and puts them behind those of `number`; returns how many there were.
inline int TakeEightDigits(const char* at, std::uint64_t& number) {
  std::uint64_t word = 0;
  std::memcpy(&word, at, sizeof word);
  word ^= 0x3030303030303030U;  // digits become 0 to 9
  const std::uint64_t others = ((word + 0x7676767676767676U) | word) & 0x8080808080808080U;
  const int count = others == 0 ? 8 : std::countr_zero(others) >> 3;
  if (count == 0) return 0;
  word <<= 64 - 8 * count;  // zeros in front, as of an eight-digit number
  word = word * 10 + (word >> 8);
  word = ((word & 0x000000FF000000FFU) * 0x000F424000000064U +
          ((word >> 16) & 0x000000FF000000FFU) * 0x0000271000000001U) >>
         32;
  number = number * kWholePowers[static_cast<std::size_t>(count)] + (word & 0xFFFFFFFFU);
  return count;
}

// All digits from `at` on, at most 24 of them. Returns how many there were.
inline int TakeDigits(const char* at, std::uint64_t& number) {
  int total = TakeEightDigits(at, number);
  if (total < 8) return total;
  const int second = TakeEightDigits(at + 8, number);
  return second < 8 ? 8 + second : 16 + TakeEightDigits(at + 16, number);
}

}  // namespace number_scan

// Reads the number that begins at `at` where it has a sign at most, up to 19 digits with `mark`
// among them, no exponent beyond 22, and where that gives the correctly rounded double in one step.
// Returns the character behind it; null when there is no such number, which says nothing about
// others. kNumberScanPadding characters from there on can be read.
inline const char* ScanNumber(const char* at, char mark, double& value) {
  using namespace number_scan;
  constexpr int kMostDigits = 19;  // fit into 64 bits
  const bool negative = *at == '-';
  at += negative ? 1 : 0;
  std::uint64_t digits = 0;
  int count = TakeDigits(at, digits);
  at += count;
  int exponent = 0;
  if (*at == mark && count < kMostDigits) {
    const int places = TakeDigits(at + 1, digits);
    if (count + places == 0) return nullptr;
    at += 1 + places;
    count += places;
    exponent = -places;
  } else if (count == 0) {
    return nullptr;
  }
  if (count > kMostDigits || digits > kExactIntegers) return nullptr;
  if ((*at | 0x20) == 'e') {
    const char* next = at + 1;
    const bool down = *next == '-';
    if (down || *next == '+') ++next;
    std::uint64_t power = 0;
    const int length = TakeEightDigits(next, power);
    if (length == 0 || length > 3) return nullptr;
    exponent += down ? -static_cast<int>(power) : static_cast<int>(power);
    at = next + length;
  }
  auto result = static_cast<double>(digits);
  if (exponent < 0) {
    if (exponent < -22) return nullptr;
    result /= kPowersOfTen[static_cast<std::size_t>(-exponent)];
  } else if (exponent > 0) {
    if (exponent > 22) return nullptr;
    result *= kPowersOfTen[static_cast<std::size_t>(exponent)];
  }
  value = negative ? -result : result;
  return at;
}
