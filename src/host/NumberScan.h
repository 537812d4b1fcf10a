// The quick way of reading a decimal number out of a block of text, for plain numbers with few
// digits: what an import reads millions of. Everything else is left to ParseNumber.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "host/ExactPowers.h"

#if defined(__SSE2__) && defined(__x86_64__)
#define VEX_SCANS_SIXTEEN 1
#include <emmintrin.h>
#endif

static_assert(std::endian::native == std::endian::little, "eight characters are read as one word");

// Characters in front of the text and behind it that these functions may touch (without regard to
// what they hold).
inline constexpr std::size_t kNumberScanPadding = 32;

// Cells that ScanOneDigitFields writes at once.
inline constexpr std::size_t kOneDigitFields = 8;

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

#ifdef VEX_SCANS_SIXTEEN

// Sixteen bytes, the last `count` of them with all bits set.
inline __m128i LastBytes(int count) {
  alignas(32) static constexpr std::array<unsigned char, 32> kBytes = {
      0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,
      255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255};
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(kBytes.data() + count));
}

inline __m128i SixteenFrom(const char* at) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}

// The number of sixteen digits, one in a byte: pairs, fours and eights are put together in all
// places at once.
inline std::uint64_t NumberOfSixteen(__m128i digits) {
  const __m128i tens =
      _mm_mullo_epi16(_mm_and_si128(digits, _mm_set1_epi16(0xFF)), _mm_set1_epi16(10));
  const __m128i pairs = _mm_add_epi16(tens, _mm_srli_epi16(digits, 8));
  const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 100));
  const __m128i eights =
      _mm_madd_epi16(_mm_packs_epi32(fours, fours), _mm_set1_epi32(1 << 16 | 10000));
  const auto halves = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
  return (halves & 0xFFFFFFFFU) * 100'000'000 + (halves >> 32);
}

// Numbers of up to fifteen characters without an exponent, without a branch that depends on their
// lengths. The digits are read up to the end of the number, and those in front of the mark once
// more from one place before, so that the mark falls out.
inline const char* ScanSixteen(const char* at, char mark, double& value) {
  const __m128i text = SixteenFrom(at);
  const __m128i digits = _mm_sub_epi8(text, _mm_set1_epi8('0'));
  const auto areDigits = static_cast<unsigned>(
      _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(digits, _mm_set1_epi8(9)), digits)));
  const unsigned negative = *at == '-' ? 1 : 0;
  const unsigned others = ~(areDigits | negative);  // a bit set for each, and all behind the text
  const unsigned first = others & (0 - others);
  const unsigned marks =
      first & static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(text, _mm_set1_epi8(mark))));
  const int end = std::countr_zero(others ^ marks);
  const int marked = marks != 0 ? 1 : 0;
  const int count = end - marked - static_cast<int>(negative);
  if (end == 16 || count == 0 || (at[end] | 0x20) == 'e') return nullptr;
  const int places = end - marked - std::countr_zero(first);
  const __m128i behind = LastBytes(places);
  const __m128i joined =
      _mm_or_si128(_mm_and_si128(behind, SixteenFrom(at + end - 16)),
                   _mm_andnot_si128(behind, SixteenFrom(at + end - 16 - marked)));
  const std::uint64_t number =
      NumberOfSixteen(_mm_and_si128(_mm_sub_epi8(joined, _mm_set1_epi8('0')), LastBytes(count)));
  if (number > kExactIntegers) return nullptr;
  const double magnitude = static_cast<double>(static_cast<std::int64_t>(number)) /
                           kPowersOfTen[static_cast<std::size_t>(places)];
  value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) | std::uint64_t{negative}
                                                                              << 63);
  return at + end;
}

#endif

// As ScanNumber, one part of the number after the other.
inline const char* ScanInParts(const char* at, char mark, double& value) {
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

}  // namespace number_scan

// Reads the number that begins at `at` where it has a sign at most, up to 19 digits with `mark`
// among them, no exponent beyond 22, and where that gives the correctly rounded double in one step.
// Returns the character behind it; null when there is no such number, which says nothing about
// others. kNumberScanPadding characters before it and from there on can be read.
inline const char* ScanNumber(const char* at, char mark, double& value) {
#ifdef VEX_SCANS_SIXTEEN
  if (const char* const end = number_scan::ScanSixteen(at, mark, value)) return end;
#endif
  return number_scan::ScanInParts(at, mark, value);
}

// Reads fields that are one digit with `separator` behind it, as many as there are next to each
// other up to kOneDigitFields; returns how many. `out` has room for kOneDigitFields cells, and what
// is left of it is overwritten.
inline std::size_t ScanOneDigitFields(const char* at, char separator, double* out) {
#ifdef VEX_SCANS_SIXTEEN
  const __m128i zeros =
      _mm_set1_epi16(static_cast<short>(static_cast<unsigned char>(separator) << 8 | '0'));
  const __m128i digits = _mm_sub_epi8(number_scan::SixteenFrom(at), zeros);
  const __m128i good = _mm_cmpeq_epi8(_mm_min_epu8(digits, _mm_set1_epi16(9)), digits);
  const auto bad = ~static_cast<unsigned>(_mm_movemask_epi8(good));
  const __m128i none = _mm_setzero_si128();
  const __m128i halves[] = {_mm_unpacklo_epi16(digits, none), _mm_unpackhi_epi16(digits, none)};
  for (const __m128i half : halves) {
    _mm_storeu_pd(out, _mm_cvtepi32_pd(half));
    _mm_storeu_pd(out + 2, _mm_cvtepi32_pd(_mm_srli_si128(half, 8)));
    out += 4;
  }
  return static_cast<std::size_t>(std::countr_zero(bad)) / 2;
#else
  std::size_t count = 0;
  for (; count < kOneDigitFields; ++count) {
    const auto digit = static_cast<unsigned>(at[2 * count] - '0');
    if (digit > 9 || at[2 * count + 1] != separator) break;
    out[count] = digit;
  }
  return count;
#endif
}
