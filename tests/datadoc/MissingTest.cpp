#include <limits>

#include <gtest/gtest.h>

#include "datadoc/DataDoc.h"
#include "datadoc/Missing.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TORVIKSTRUCT WithDefinitions(const GlobalMissingDefinition& global, const MissingDefinition& own) {
  TORVIKSTRUCT data;
  data.variables = 1;
  data.ResizeArrays(1);
  data.missing = global;
  data.variable[0].missing = own;
  return data;
}

}  // namespace

TEST(IsMissingValue, FollowsItsOrderAndItsAsymmetry) {
  constexpr double U = kNotSet;
  const GlobalMissingDefinition none = {U, U, U, U, U, U};
  const struct {
    const char* what;
    GlobalMissingDefinition global;
    MissingDefinition own;
    double value;
    bool missing;
  } cases[] = {
      {"default code", kDefaultGlobalMissing, kNoMissing, kMissingCode, true},
      {"other value", kDefaultGlobalMissing, kNoMissing, 0, false},
      {"no definition", none, kNoMissing, kMissingCode, false},
      {"global third value", {U, U, 9, U, U, U}, kNoMissing, 9, true},
      {"own third value", none, {U, U, 9, U, U}, 9, true},
      {"own range, low bound", none, {U, U, U, 1, 3}, 1, true},
      {"own range, high bound", none, {U, U, U, 1, 3}, 3, true},
      {"beyond own range", none, {U, U, U, 1, 3}, 3.0001, false},
      {"own range half set", none, {U, U, U, 1, U}, 1, false},
      {"global range is only a switch", {U, U, U, 1, 3, U}, kNoMissing, 2, false},
      {"the switch compares own bounds unasked", {U, U, U, 1, 3, U}, {U, U, U, U, 5}, -7, true},
      {"without the switch they must be set", none, {U, U, U, U, 5}, -7, false},
      {"half a switch is none", {U, U, U, 1, U, U}, {U, U, U, U, 5}, -7, false},
      {"the switch finds the not-set value itself", {U, U, U, 1, 3, U}, kNoMissing, U, true},
      {"NaN in a field counts as set, equals nothing",
       {kNan, U, U, U, U, U},
       {U, U, U, kNan, 3},
       2,
       false},
      {"NaN in a cell", kDefaultGlobalMissing, {1, 2, 3, 1, 3}, kNan, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(IsMissingValue(WithDefinitions(c.global, c.own), c.value, 0), c.missing) << c.what;
  }
}

TEST(IsMissingCell, TakesTheNotSetValueAndNaNTooWhenDataLeave) {
  const TORVIKSTRUCT data = WithDefinitions(kDefaultGlobalMissing, kNoMissing);
  EXPECT_TRUE(IsMissingCell(data, kNotSet, 0));
  EXPECT_TRUE(IsMissingCell(data, kNan, 0));
  EXPECT_TRUE(IsMissingCell(data, kMissingCode, 0));
  EXPECT_FALSE(IsMissingCell(data, -999998.0, 0));
}

TEST(IsMissingValue, CountsUnlessToldNotTo) {
  CDataDoc document;
  document.MemoryReInit(1);
  long counter = 3;
  EXPECT_EQ(document.IsMissing(kMissingCode, 0, counter), 1);
  EXPECT_EQ(document.IsMissing(5, 0, counter), 0);
  EXPECT_EQ(counter, 4);
  counter = -1;
  EXPECT_EQ(document.IsMissing(kMissingCode, 0, counter), 1);
  EXPECT_EQ(counter, -1);
}
