#include <gtest/gtest.h>

#include "transfer/ConvertData.h"

namespace {

constexpr double kNone = -1234.5;  // the default

}  // namespace

TEST(ConvertData, ReadsNumbersWithEitherExponent) {
  const struct {
    const char* text;
    double value;
  } cases[] = {{"2.5D+02", 250}, {"1.5d3", 1500}, {"1.5D-1", 0.15},    {"1.5E2", 150},
               {"12D", 12},      {"12Dx", 12},    {"1.5D+03D2", 1500}, {"1.5D+03E2", 1500},
               {"D5", kNone},    {"1D-400", 0},   {"1D400", 1}};
  for (const auto& c : cases) EXPECT_EQ(ConvertData(c.text, kNone), c.value) << c.text;
}

TEST(ConvertData, TakesWhatIsANumberAndOtherwiseTheDefault) {
  const struct {
    const char* text;
    double value;
  } cases[] = {{"", kNone},
               {" ", kNone},
               {"abc", kNone},
               {"  7 ", 7},
               {"\t-7", -7},
               {"- 7", kNone},
               {"1 000", 1},
               {"1,000.5", 1},
               {"3,5", 3},
               {"12abc", 12},
               {"1.2.3", 1.2},
               {"1'000", 1},
               {"+4", 4},
               {"++4", kNone},
               {".", kNone},
               {"-.5", -0.5},
               {"5.", 5},
               {"1e", kNone},
               {"1e+", kNone},
               {"1e+x", kNone},
               {"1E+003", 1000},
               {"0x1F", 0},
               {"nan", kNone},
               {"NaN", kNone},
               {"inf", kNone},
               {"-Infinity", kNone},
               {"1e308", 1e308},
               {"1e309", kNone},
               {"-1e309", kNone},
               {"1e-320", 1e-320},
               {"1e-400", 0},
               {"9007199254740993", 9007199254740992.0},
               {"0.1000000000000000055511151231257827", 0.1},
               {"123456789012345678901234567890", 123456789012345678901234567890.0}};
  for (const auto& c : cases)
    EXPECT_EQ(ConvertData(c.text, kNone), c.value) << '"' << c.text << '"';
}

TEST(PutPoint, LeavesOneMark) {
  const struct {
    const char* text;
    double value;
  } cases[] = {{"3,5", 3.5}, {"-,5", -0.5}, {"1.000,5", 1},
               {"3.5", 3},   {"2,5D1", 25}, {",", kNone}};
  for (const auto& c : cases) {
    std::string text = c.text;
    PutPoint(',', text);
    EXPECT_EQ(ConvertData(text, kNone), c.value) << c.text;
  }
}

TEST(ParseDataNumber, TellsHowMuchItConsumed) {
  EXPECT_EQ(ParseDataNumber("1.5D+03")->length, 7U);
  EXPECT_EQ(ParseDataNumber("1.5D+03x")->length, 7U);
  EXPECT_EQ(ParseDataNumber("12abc")->length, 2U);
}
