#include <gtest/gtest.h>

#include "transfer/ConvertData.h"

TEST(ConvertData, ReadsNumbersWithEitherExponent) {
  const struct {
    const char* text;
    double value;
  } cases[] = {{"2.5D+02", 250}, {"1.5d3", 1500}, {"1.5D-1", 0.15},   {"1.5E2", 150}, {"abc", -1},
               {"", -1},         {"  7 ", 7},     {"12abc", 12},      {"12D", 12},    {"12Dx", 12},
               {"1e", -1},       {"D5", -1},      {"1.5D+03D2", 1500}};
  for (const auto& c : cases) EXPECT_EQ(ConvertData(c.text, -1), c.value) << c.text;
}

TEST(ParseDataNumber, TellsHowMuchItConsumed) {
  EXPECT_EQ(ParseDataNumber("1.5D+03")->length, 7U);
  EXPECT_EQ(ParseDataNumber("1.5D+03x")->length, 7U);
  EXPECT_EQ(ParseDataNumber("12abc")->length, 2U);
}
