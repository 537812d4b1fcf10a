#include "host/ShortestNumber.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

constexpr double kExactIntegers = 9007199254740992.0;  // 2^53
constexpr int kScaledDigits = 15;                      // a scaled value stays below 10^15

constexpr std::array<double, 23> kPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                            1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

constexpr auto kDigitPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

// The digits of a number below 10^16, right aligned in 16 characters. Returns how many there are.
int WriteDigits(std::uint64_t number, char* sixteen) {
  char* at = sixteen + 16;
  while (number >= 100) {
    at -= 2;
    std::memcpy(at, &kDigitPairs[number % 100 * 2], 2);
    number /= 100;
  }
  if (number >= 10) {
    at -= 2;
    std::memcpy(at, &kDigitPairs[number * 2], 2);
  } else {
    *--at = static_cast<char>('0' + number);
  }
  return static_cast<int>(sixteen + 16 - at);
}

// Takes zeros off the end of a number that is not 0, at most 15, and counts them.
int StripZeros(std::uint64_t& number) {
  int zeros = 0;
  const auto strip = [&](std::uint64_t power, int digits) {
    const std::uint64_t part = number / power;
    if (part * power != number) return;
    number = part;
    zeros += digits;
  };
  strip(100'000'000, 8);
  strip(10'000, 4);
  strip(100, 2);
  strip(10, 1);
  return zeros;
}

// A value as digits x 10^-places, without zeros at the end.
struct Decimal {
  std::uint64_t digits = 0;
  int places = 0;
};

// Every decimal of up to 15 digits reads as a double of its own, so one that reads back as `value`
// is the only one of that length, and without its zeros the shortest. The quotient of two exact
// numbers is correctly rounded, which makes the division the same as reading the text.
bool AsShortDecimal(double value, Decimal& decimal) {
  const auto exponent = static_cast<int>(std::bit_cast<std::uint64_t>(value) >> 52) - 1023;
  // 10^above is above the value: (exponent + 1) x log10(2), rounded up.
  const int above = ((exponent + 1) * 1233 >> 12) + 1;
  const int places = kScaledDigits - above;
  if (places < 1 || places >= static_cast<int>(kPowers.size())) return false;
  const double power = kPowers[static_cast<std::size_t>(places)];
  const auto scaled = static_cast<std::uint64_t>(value * power + 0.5);
  if (static_cast<double>(scaled) / power != value) return false;
  decimal.digits = scaled;
  decimal.places = places - StripZeros(decimal.digits);
  return true;
}

char* WriteExponent(int exponent, char* out) {
  *out++ = 'e';
  *out++ = exponent < 0 ? '-' : '+';
  const int magnitude = std::abs(exponent);
  std::memcpy(out, &kDigitPairs[static_cast<std::size_t>(magnitude) * 2], 2);
  return out + 2;
}

// With or without an exponent, whichever is shorter; without where they are equal.
char* WriteDecimal(const Decimal& decimal, char* out) {
  char sixteen[16];
  const int count = WriteDigits(decimal.digits, sixteen);
  const char* const digits = sixteen + 16 - count;
  const int exponent = count - 1 - decimal.places;  // of the first digit
  const auto copy = [&](int from, int to) {
    std::memcpy(out, digits + from, static_cast<std::size_t>(to - from));
    out += to - from;
  };
  if (exponent >= 0) {
    copy(0, exponent + 1);
    *out++ = '.';
    copy(exponent + 1, count);
    return out;
  }
  const int plain = 1 - exponent + count;
  const int scientific = count + (count > 1 ? 1 : 0) + 4;
  if (plain <= scientific) {
    *out++ = '0';
    *out++ = '.';
    out = std::fill_n(out, -exponent - 1, '0');
    copy(0, count);
    return out;
  }
  copy(0, 1);
  if (count > 1) {
    *out++ = '.';
    copy(1, count);
  }
  return WriteExponent(exponent, out);
}

}  // namespace

char* WriteShortest(double value, char* out) {
  const double magnitude = std::fabs(value);
  if (magnitude < kExactIntegers) {
    const auto whole = static_cast<std::int64_t>(value);
    if (static_cast<double>(whole) == value && (whole != 0 || !std::signbit(value))) {
      if (whole >= 0 && whole < 10) {
        *out = static_cast<char>('0' + whole);
        return out + 1;
      }
      return std::to_chars(out, out + kNumberBytes, whole).ptr;
    }
  }
  Decimal decimal;
  if (magnitude >= 1e-7 && magnitude < 1e14 && AsShortDecimal(magnitude, decimal)) {
    if (value < 0) *out++ = '-';
    return WriteDecimal(decimal, out);
  }
  return std::to_chars(out, out + kNumberBytes, value).ptr;
}
