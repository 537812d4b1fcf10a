#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>

#include <gtest/gtest.h>

#include "host/Numbers.h"

// What a stream extraction makes of each text is the reference, so the wrapper is compared with
// one; columns that the standard library treats otherwise are spelled out.
TEST(ParseNumber, ReadsAsAStreamExtractionDoes) {
  const char* const texts[] = {"1",
                               "-1",
                               "+1",
                               "1.5",
                               ".5",
                               "5.",
                               "1e3",
                               "1E+3",
                               "1e-3",
                               "  7",
                               "\t7",
                               "7  ",
                               "12abc",
                               "1.5D3",
                               "1.2.3",
                               "1e5x",
                               "1-2",
                               "-0.0",
                               "00012",
                               "1e400",
                               "-1e400",
                               "",
                               " ",
                               "abc",
                               "-",
                               "+",
                               ".",
                               "e5",
                               "nan",
                               "inf",
                               "NaN",
                               "0x10",
                               "1e",
                               "1e+",
                               "1,5",
                               "+-1",
                               "-+1",
                               "--1",
                               "1 2",
                               "1e3.5",
                               "9007199254740993",
                               "4.9e-324"};
  for (const char* text : texts) {
    std::istringstream in(text);
    double expected = 0;
    const bool good = static_cast<bool>(in >> expected);
    const auto number = ParseNumber(text);
    ASSERT_EQ(number.has_value(), good) << '"' << text << '"';
    if (!good) continue;
    EXPECT_EQ(number->value, expected) << '"' << text << '"';
    EXPECT_EQ(std::signbit(number->value), std::signbit(expected)) << '"' << text << '"';
    const auto end = in.eof() ? std::strlen(text) : static_cast<std::size_t>(in.tellg());
    EXPECT_EQ(number->length, end) << '"' << text << '"';
  }
}

TEST(ParseNumber, TooSmallIsZeroAndTooLargeIsNone) {
  const struct {
    const char* text;
    double value;
  } small[] = {{"1e-400", 0.0},
               {"-1e-400", -0.0},
               {"0.0000000001e-320", 0.0},
               {"1e-99999999999999999999", 0.0}};
  for (const auto& c : small) {
    const auto number = ParseNumber(c.text);
    ASSERT_TRUE(number) << c.text;
    EXPECT_EQ(number->value, c.value) << c.text;
    EXPECT_EQ(std::signbit(number->value), std::signbit(c.value)) << c.text;
  }
  for (const char* text : {"1e309", "100e307", "1e99999999999999999999", "1234e306"}) {
    EXPECT_FALSE(ParseNumber(text)) << text;
  }
}

TEST(FormatShortest, ReadsBackExactly) {
  const double values[] = {
      0.0,  -0.0, 1,    -1,     0.1,   1e5,       123456789012345.0, 9007199254740991.0,
      1e16, 1e21, 1e-7, 5e-324, 1e308, -999999.0, -9.999e301,        1.0 / 3};
  for (const double value : values) {
    const auto number = ParseNumber(FormatShortest(value));
    ASSERT_TRUE(number) << FormatShortest(value);
    EXPECT_EQ(number->value, value);
    EXPECT_EQ(std::signbit(number->value), std::signbit(value));
  }
  EXPECT_EQ(FormatShortest(100000), "100000");  // never 1e+05
}

TEST(FormatFixed, PadsAndRounds) {
  EXPECT_EQ(FormatFixed(1234.5, 10, 2), "   1234.50");
  EXPECT_EQ(FormatFixed(-1.005, 0, 1), "-1.0");
  EXPECT_EQ(FormatFixed(1e300, 0, 0).size(), 301U);
}

TEST(AppendDumpValue, IsAsPrintfFormatsIt) {
  const double values[] = {1234.5,
                           -999999,
                           0,
                           -0.0,
                           1e10,
                           1.23456789e-5,
                           123456.7,
                           1e-300,
                           -9.999e301,
                           999999.5,
                           std::numeric_limits<double>::infinity()};
  for (const double value : values) {
    char expected[64];
    std::snprintf(expected, sizeof expected, "%15.6G", value);
    CString text;
    AppendDumpValue(value, text);
    EXPECT_EQ(text, expected);
  }
}
