// The quick ways of reading and writing numbers against the exact ones.
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include "host/NumberScan.h"
#include "host/Numbers.h"
#include "host/ShortestNumber.h"

namespace {

CString StandardShortest(double value) {
  char buffer[64];
  const bool whole = std::fabs(value) < 9007199254740992.0 && value == std::trunc(value) &&
                     !(value == 0 && std::signbit(value));
  const auto result = whole ? std::to_chars(buffer, buffer + 64, static_cast<long long>(value))
                            : std::to_chars(buffer, buffer + 64, value);
  return CString(buffer, result.ptr);
}

// Reads what it can in the quick way and compares bits; returns whether it could.
bool ScansExactly(const CString& text, char mark = '.') {
  const CString around(kNumberScanPadding, '9');
  const CString padded = around + text + '\n' + around;
  const char* const begin = padded.data() + kNumberScanPadding;
  double value = 0;
  const char* const end = ScanNumber(begin, mark, value);
  if (end == nullptr) return false;
  CString plain = text;
  for (char& c : plain) c = c == mark ? '.' : c;
  double expected = 0;
  const auto result = std::from_chars(plain.data(), plain.data() + plain.size(), expected);
  EXPECT_EQ(end - begin, result.ptr - plain.data()) << text;
  EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << text;
  return true;
}

// Doubles as they stand in data: decimals of some digits, products, and any bits.
std::vector<double> Samples() {
  std::vector<double> values = {
      0.1,        0.5,  1e-7,  9.9e-8,  123456.789, 0.001,
      1e13,       1e14, 0.3,   99999.5, 1e-6,       0.000123,
      1e15 + 0.5, 4.35, 2.675, 1.005,   5e-324,     1.7976931348623157e308};
  // Where one way of writing ends and another begins.
  for (const double limit : {1e-7, 1e-4, 1e-3, 1e-2, 0.1, 1.0, 1e7, 1e8, 1e14}) {
    double below = limit;
    double above = limit;
    for (int i = 0; i < 100; ++i) {
      for (const double near : {below, above}) values.insert(values.end(), {near, -near});
      below = i % 2 == 0 ? std::nextafter(below, 0) : below - limit / 1e8;
      above = i % 2 == 0 ? std::nextafter(above, 1e300) : above + limit / 1e8;
    }
  }
  for (double power = 1; power < 1e17; power *= 10) {
    for (const double near : {power - 1, power, power + 1}) {
      values.push_back(near);
      values.push_back(-near);
    }
  }
  std::mt19937_64 random(20240601);
  for (int i = 0; i < 200'000; ++i) {
    const std::uint64_t bits = random();
    const double any = std::bit_cast<double>(bits);
    if (std::isfinite(any)) values.push_back(any);
    const double digits = static_cast<double>(bits % 10'000'000'000U);
    values.push_back(digits / std::pow(10, static_cast<int>(bits >> 60)));
    values.push_back(-static_cast<double>(bits >> 11) / 9007199254740992.0);
  }
  return values;
}

}  // namespace

TEST(WriteShortest, IsWhatTheStandardLibraryWrites) {
  for (const double value : Samples()) {
    char buffer[kNumberBytes];
    ASSERT_EQ(CString(buffer, WriteShortest(value, buffer)), StandardShortest(value));
  }
}

TEST(ScanNumber, ReadsTheNearestDoubleOrLeavesIt) {
  int scanned = 0;
  for (const double value : Samples()) scanned += ScansExactly(StandardShortest(value)) ? 1 : 0;
  EXPECT_GT(scanned, 200'000);
  std::mt19937_64 random(7);
  for (int i = 0; i < 100'000; ++i) {
    CString digits = std::to_string(random());
    digits.resize(1 + random() % digits.size());
    digits.insert(random() % (digits.size() + 1), ".");
    if (random() % 4 == 0) digits += "e" + std::to_string(static_cast<int>(random() % 50) - 25);
    ScansExactly(digits);
  }
}

TEST(ScanNumber, TakesPlainNumbersAndLeavesOthers) {
  const struct {
    const char* text;
    bool taken;
  } cases[] = {{"7", true},
               {"-7.25", true},
               {"5.", true},
               {".5", true},
               {"-0", true},
               {"1e5", true},
               {"1E-22", true},
               {"123456789012345", true},
               {"0.1e1", true},
               {"", false},
               {"-", false},
               {".", false},
               {"+1", false},
               {"1e", false},
               {"1e+", false},
               {"1e400", false},
               {"--1", false},
               {"nan", false},
               {"12345678901234567890", false},
               {"1e23", false},
               {"abc", false},
               {"-.", false},
               {"1e-", false}};
  for (const auto& c : cases) EXPECT_EQ(ScansExactly(c.text), c.taken) << '"' << c.text << '"';
  EXPECT_TRUE(ScansExactly("-1234,5625", ','));
}

TEST(ScanOneDigitFields, TakesThoseNextToEachOther) {
  const struct {
    const char* text;
    std::vector<double> fields;
  } cases[] = {{"1,2,3,4,5,6,7,8,9,", {1, 2, 3, 4, 5, 6, 7, 8}},
               {"0,9,12,3,", {0, 9}},
               {"1,2,3\n4,", {1, 2}},
               {"4,,5,", {4}},
               {"NA,1,", {}},
               {"-1,1,", {}},
               {"3;4,", {}},
               {",,", {}},
               {"1,:,2,", {1}},
               {"1,/,2,", {1}}};
  for (const auto& c : cases) {
    const CString padded = c.text + CString(kNumberScanPadding, '\n');
    std::array<double, kOneDigitFields> cells{};
    const std::size_t count = ScanOneDigitFields(padded.data(), ',', cells.data());
    EXPECT_EQ(std::vector<double>(cells.begin(), cells.begin() + static_cast<long>(count)),
              c.fields)
        << c.text;
  }
}
