#include "host/ShortestNumber.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "host/ExactPowers.h"

#if defined(__SSE2__) && defined(__x86_64__)
#define VEX_WRITES_SIXTEEN 1
#include <emmintrin.h>
#endif

namespace {

constexpr int kScaledDigits = 15;  // a scaled value stays below 10^15
constexpr std::int64_t kEightDigits = 100'000'000;
constexpr std::uint64_t kZeros = 0x3030303030303030U;

constexpr std::array<std::int64_t, 18> kWholePowers = [] {
  std::array<std::int64_t, 18> powers{};
  std::int64_t power = 1;
  for (std::int64_t& entry : powers) {
    entry = power;
    power *= 10;
  }
  return powers;
}();

// The eight digits of a number below 10^8, the first in the lowest byte: halves, quarters and
// digits are split off in all places at once.
std::uint64_t EightDigits(std::uint32_t number) {
  std::uint64_t word = number / 10000 | std::uint64_t{number % 10000} << 32;
  std::uint64_t high = (word * 10486 >> 20) & 0x0000007F0000007FU;
  word = high | (word - high * 100) << 16;
  high = (word * 103 >> 10) & 0x000F000F000F000FU;
  return high | (word - high * 10) << 8;
}

// The digits of two numbers below 10^8, each as above.
struct Digits {
  std::uint64_t front = 0;
  std::uint64_t back = 0;
};

inline Digits SixteenDigits(std::int64_t front, std::int64_t back) {
#ifdef VEX_WRITES_SIXTEEN
  const __m128i numbers = _mm_set_epi64x(back, front);
  const __m128i halves =
      _mm_srli_epi64(_mm_mul_epu32(numbers, _mm_set1_epi32(static_cast<int>(0xD1B71759U))), 45);
  const __m128i lower = _mm_sub_epi32(numbers, _mm_mul_epu32(halves, _mm_set1_epi32(10000)));
  const __m128i fours = _mm_or_si128(halves, _mm_slli_epi64(lower, 32));
  const __m128i quarters = _mm_srli_epi16(_mm_mulhi_epu16(fours, _mm_set1_epi16(5243)), 3);
  const __m128i pairs = _mm_add_epi16(
      quarters,
      _mm_slli_epi32(_mm_sub_epi16(fours, _mm_mullo_epi16(quarters, _mm_set1_epi16(100))), 16));
  const __m128i tens = _mm_mulhi_epu16(pairs, _mm_set1_epi16(6554));
  const __m128i digits = _mm_add_epi16(
      tens, _mm_slli_epi16(_mm_sub_epi16(pairs, _mm_mullo_epi16(tens, _mm_set1_epi16(10))), 8));
  return {static_cast<std::uint64_t>(_mm_cvtsi128_si64(digits)),
          static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(digits, digits)))};
#else
  return {EightDigits(static_cast<std::uint32_t>(front)),
          EightDigits(static_cast<std::uint32_t>(back))};
#endif
}

// How many of eight digits there are without the zeros at the end; 0 to 8.
inline int WithoutZeros(std::uint64_t digits) {
  return 8 - (std::countl_zero(digits) >> 3);
}

inline int WithoutZeros(const Digits& digits) {
  return digits.back != 0 ? 8 + WithoutZeros(digits.back) : WithoutZeros(digits.front);
}

inline char* Put(std::uint64_t digits, char* out) {
  const std::uint64_t text = digits | kZeros;
  std::memcpy(out, &text, sizeof text);
  return out + sizeof text;
}

// Without the zeros in front; eight characters are copied, whatever is behind.
inline char* PutWhole(std::uint64_t digits, char* out) {
  const int zeros = std::min(std::countr_zero(digits) >> 3, 7);
  const std::uint64_t text = (digits | kZeros) >> (8 * zeros);
  std::memcpy(out, &text, sizeof text);
  return out + 8 - zeros;
}

// A value as a whole number of powers of ten.
struct Scaled {
  std::int64_t number = 0;
  int places = 0;  // number is the value x 10^places
};

// Every decimal of up to 15 digits reads as a double of its own, so one that reads back as `value`
// is the only one of that length, and without its zeros the shortest. The quotient of two exact
// numbers is correctly rounded, which makes the division the same as reading the text.
inline bool AsShortDecimal(double value, Scaled& scaled) {
  const auto exponent = static_cast<int>(std::bit_cast<std::uint64_t>(value) >> 52) - 1023;
  // 10^above is above the value: (exponent + 1) x log10(2), rounded up.
  const int above = ((exponent + 1) * 1233 >> 12) + 1;
  const int places = kScaledDigits - above;
  if (places < 1 || places >= static_cast<int>(kPowersOfTen.size())) return false;
  const double power = kPowersOfTen[static_cast<std::size_t>(places)];
  scaled = {static_cast<std::int64_t>(value * power + 0.5), places};
  return static_cast<double>(scaled.number) / power == value;
}

char* WriteWhole(std::int64_t number, char* out) {
  if (number <= -kEightDigits || number >= kEightDigits) {
    return std::to_chars(out, out + kNumberBytes, number).ptr;
  }
  *out = '-';
  return PutWhole(EightDigits(static_cast<std::uint32_t>(std::abs(number))),
                  out + (number < 0 ? 1 : 0));
}

// A value from 0.001 to below 10^7 that is not whole and has at most eight decimals, as most
// numbers with decimals are; null where it has more. They are no more than 15 digits, see
// AsShortDecimal.
inline char* WriteEightDecimals(double value, std::int64_t whole, char* out) {
  constexpr double kPower = 1e8;
  const auto scaled = static_cast<std::int64_t>(value * kPower + 0.5);
  if (static_cast<double>(scaled) / kPower != value) return nullptr;
  const Digits digits = SixteenDigits(whole, scaled - whole * kEightDigits);
  out = PutWhole(digits.front, out);
  *out++ = '.';
  Put(digits.back, out);
  return out + WithoutZeros(digits.back);
}

// A value from 0.001 to below 10^14 that is not whole; null where it has more than 15 digits.
char* WriteWithPoint(double value, std::int64_t whole, char* out) {
  constexpr int kDecimals = 16;
  Scaled scaled;
  if (!AsShortDecimal(value, scaled)) return nullptr;
  const int zeros = std::max(scaled.places - kDecimals, 0);  // in front of the sixteen: 0 or 1
  const std::int64_t decimals =
      (scaled.number - whole * kWholePowers[static_cast<std::size_t>(scaled.places)]) *
      kWholePowers[static_cast<std::size_t>(kDecimals + zeros - scaled.places)];
  out = WriteWhole(whole, out);
  std::memcpy(out, ".0", 2);
  out += 1 + zeros;
  const Digits digits = SixteenDigits(decimals / kEightDigits, decimals % kEightDigits);
  Put(digits.back, Put(digits.front, out));
  return out + WithoutZeros(digits);
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

// A value from 10^-7 to below 0.001: with or without an exponent, whichever is shorter; without
// where they are equal. Null where it has more than 15 digits.
char* WriteSmall(double value, char* out) {
  Scaled scaled;
  if (!AsShortDecimal(value, scaled)) return nullptr;
  // Sixteen digits, the first of which is not zero.
  const int more = scaled.number < kWholePowers[kScaledDigits - 1] ? 2 : 1;
  const std::int64_t number = scaled.number * kWholePowers[static_cast<std::size_t>(more)];
  const int exponent = kScaledDigits - scaled.places - more;
  const Digits digits = SixteenDigits(number / kEightDigits, number % kEightDigits);
  const int count = WithoutZeros(digits);
  const int zeros = -exponent - 1;
  const bool plain = 2 + zeros <= (count > 1 ? 1 : 0) + 4;
  if (plain) {
    std::memcpy(out, "0.000000", 8);
    out += 2 + zeros;
    Put(digits.back, Put(digits.front, out));
    return out + count;
  }
  Put(digits.front, out);
  Put(digits.back >> 8, Put(digits.front >> 8 | digits.back << 56, out + 2));
  if (count > 1) out[1] = '.';
  return WriteExponent(exponent, out + count + (count > 1 ? 1 : 0));
}

// A value that is not whole, in one of the quick ways; null where there is none.
inline char* WriteFraction(double value, std::int64_t whole, char* out) {
  if (value < 1e-3) return value >= 1e-7 ? WriteSmall(value, out) : nullptr;
  if (value < 1e7) {
    if (char* const end = WriteEightDecimals(value, whole, out)) return end;
  }
  return value < 1e14 ? WriteWithPoint(value, whole, out) : nullptr;
}

}  // namespace

char* WriteShortest(double value, char* out) {
  const double magnitude = std::fabs(value);
  const bool negative = std::signbit(value);
  if (magnitude < static_cast<double>(kExactIntegers)) {
    const auto whole = static_cast<std::int64_t>(magnitude);
    if (static_cast<double>(whole) == magnitude && (whole != 0 || !negative)) {
      return WriteWhole(negative ? -whole : whole, out);
    }
    *out = '-';
    char* const end = WriteFraction(magnitude, whole, out + (negative ? 1 : 0));
    if (end != nullptr) return end;
  }
  return std::to_chars(out, out + kNumberBytes, value).ptr;
}
