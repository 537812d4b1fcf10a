#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "datadoc/FieldText.h"

namespace {

using S = FieldState;

TEST(FieldText, ReadsTheNumberAtTheStart) {
  const struct {
    const char* text;
    int decimals;
    double value;
    FieldState state;
  } cases[] = {
      {"12345", 2, 123.45, S::Number},
      {"  123.4 ", 2, 123.4, S::Number},
      {"-5", 2, -0.05, S::Number},
      {"   5", 3, 0.005, S::Number},
      {"12  ", 3, 1.2, S::Number},  // blanks behind the digits are characters too
      {"12  ", 2, 12, S::Number},
      {"5", 0, 5, S::Number},
      {"+7", 0, 7, S::Number},
      {".5", 0, 0.5, S::Number},
      {"-.5e1", 0, -5, S::Number},
      {"1.5D+03", 0, 1500, S::Number},
      {"1d2", 0, 100, S::Number},
      {"1.5E", 0, 1.5, S::Part},
      {"1D", 0, 1, S::Part},
      {"12abc", 0, 12, S::Part},
      {"12x45", 2, 12, S::Part},
      {"1,5", 0, 1, S::Part},
      {"0x10", 0, 0, S::Part},
      {"1 2", 0, 1, S::Part},
      {"", 0, 0, S::Blank},
      {"   ", 2, 0, S::Blank},
      {"abc", 0, 0, S::Text},
      {"-", 0, 0, S::Text},
      {".", 0, 0, S::Text},
      {"nan", 0, 0, S::Text},
      {"inf", 0, 0, S::Text},
      {"1e999", 0, 0, S::Text},
      {"1e-999", 0, 0, S::Number},
      {"9007199254740993", 0, 9007199254740992.0, S::Number},
      {"123456789012345678901234567890", 0, 123456789012345678901234567890.0, S::Number},
      {"123456789012345678901234567890", 29, 1.23456789012345678901234567890, S::Number},
      {"0.1000000000000000055511151231257827", 0, 0.1, S::Number},
  };
  for (const auto& [text, decimals, value, state] : cases) {
    FieldState got = S::Number;
    EXPECT_EQ(ReadField(text, decimals, got), value) << text << " with " << decimals;
    EXPECT_EQ(got, state) << text;
  }
}

TEST(FieldText, WritesWhatTheFieldCanHold) {
  const struct {
    double value;
    int width;
    int decimals;
    const char* text;  // null: it cannot
  } cases[] = {
      {1.5, 8, 2, "1.500000"},
      {1.5, 10, 2, "  1.500000"},
      {1.5, 6, 0, "1.5000"},
      {5, 1, 0, "5"},
      {5, 2, 0, " 5"},
      {5, 2, 2, "5."},
      {0.05, 1, 2, "5"},
      {123.45, 5, 2, "12345"},
      {123.45, 6, 2, "123.45"},
      {0.5, 2, 0, ".5"},
      {-0.5, 3, 0, "-.5"},
      {-0.5, 2, 0, nullptr},
      {123.456, 6, 2, nullptr},
      {1e300, 5, 0, "1e300"},
      {1e300, 6, 1, "1.e300"},
      {1e300, 4, 0, nullptr},
      {1.5e-7, 6, 0, "1.5e-7"},
      {1.5e-7, 5, 0, "15e-8"},
      {1e20, 21, 0, "100000000000000000000"},
      {1.0 / 3, 18, 0, "0.3333333333333333"},
      {-999999, 7, 0, "-999999"},
      {-999999, 6, 0, nullptr},
      {9.987654321, 11, 0, "9.987654321"},
      {-0.0, 4, 0, "-0.0"},
      {std::numeric_limits<double>::quiet_NaN(), 20, 0, nullptr},
      {std::numeric_limits<double>::infinity(), 20, 0, nullptr},
  };
  for (const auto& [value, width, decimals, text] : cases) {
    CString out(static_cast<std::size_t>(width), '?');
    const bool written = WriteField(value, width, decimals, out.data());
    EXPECT_EQ(written, text != nullptr) << value << " in " << width << '.' << decimals;
    EXPECT_EQ(written ? out : "", text != nullptr ? text : "");
  }
}

TEST(FieldText, FreeNumbersReadBack) {
  const struct {
    double value;
    const char* text;
  } cases[] = {{1, "1.000000"},
               {-2.5, "-2.500000"},
               {0.1234567, "0.1234567"},
               {-999999, "-999999.000000"},
               {1e15, "1000000000000000.000000"},
               {-2.5e10, "-25000000000.000000"}};
  for (const auto& [value, text] : cases) {
    CString out;
    EXPECT_TRUE(AppendFreeNumber(value, out));
    EXPECT_EQ(out, text);
  }
  CString none;
  EXPECT_FALSE(AppendFreeNumber(std::nan(""), none));
}

// Numbers of every kind: few decimals, many, any bits.
double AnyNumber(std::mt19937_64& random) {
  switch (random() % 4) {
    case 0:
      return static_cast<double>(static_cast<std::int64_t>(random() % 20001) - 10000);
    case 1:
      return static_cast<double>(static_cast<std::int64_t>(random() % 2000001) - 1000000) / 100;
    case 2:
      return std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 80));
    default: {
      const double value = std::bit_cast<double>(random());
      return std::isfinite(value) ? value : 0;
    }
  }
}

TEST(FieldText, WhatIsWrittenReadsBack) {
  std::mt19937_64 random(11);
  int written = 0;
  for (int i = 0; i < 200000; ++i) {
    const double value = AnyNumber(random);
    const int width = 1 + static_cast<int>(random() % 26);
    const int decimals = static_cast<int>(random() % 5);
    CString out(static_cast<std::size_t>(width), '?');
    FieldState state = S::Number;
    if (WriteField(value, width, decimals, out.data())) {
      ++written;
      ASSERT_EQ(ReadField(out, decimals, state), value) << out << " for " << value;
      ASSERT_EQ(state, S::Number);
    } else {
      ASSERT_LT(width, 24) << value;  // the longest of all doubles has 24 characters
    }
    CString free;
    ASSERT_TRUE(AppendFreeNumber(value, free));
    ASSERT_EQ(ReadField(free, 0, state), value) << free;
  }
  EXPECT_GT(written, 100000);
}

}  // namespace
