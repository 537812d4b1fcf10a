#include <gtest/gtest.h>

#include "datadoc/Selections.h"

namespace {

TORVIKSTRUCT Named(const std::vector<CString>& names) {
  TORVIKSTRUCT data;
  data.variables = static_cast<std::int32_t>(names.size());
  data.ResizeArrays(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) data.variable[i].name = names[i];
  return data;
}

}  // namespace

TEST(ParseVariableList, TakesNamesNumbersAndRanges) {
  const TORVIKSTRUCT data = Named({"A1", "A2", "A3", "age", "pre-test", "2", "\xE4"});
  const struct {
    const char* list;
    std::vector<std::int32_t> variables;
  } good[] = {{"", {}},
              {"A2", {1}},
              {" age , A1 ", {3, 0}},
              {"A1-A3", {0, 1, 2}},
              {"1-3,7", {0, 1, 2, 6}},
              {"2", {5}},  // a name goes before a number
              {"pre-test", {4}},
              {"age-pre-test", {3, 4}},
              {"\xC3\xA4", {6}}};
  CString problem;
  for (const auto& c : good) {
    const auto found = ParseVariableList(data, c.list, problem);
    ASSERT_TRUE(found) << c.list;
    EXPECT_EQ(*found, c.variables) << c.list;
  }
  for (const char* list : {"A4", "A3-A1", "0", "8", "A1,,A2", "a1", "A1-", "-"}) {
    EXPECT_FALSE(ParseVariableList(data, list, problem)) << list;
  }
}

TEST(ParseCaseRange, IsCutAtTheLastCase) {
  const struct {
    const char* text;
    std::int64_t begin, end;
  } good[] = {{"5", 4, 5},       {"3-8", 2, 8},   {"3-", 2, 10},
              {" 3 - 4 ", 2, 4}, {"8-99", 7, 10}, {"11", 10, 10}};
  for (const auto& c : good) {
    const auto range = ParseCaseRange(c.text, 10);
    ASSERT_TRUE(range) << c.text;
    EXPECT_EQ(range->begin, c.begin) << c.text;
    EXPECT_EQ(range->end, c.end) << c.text;
  }
  for (const char* text : {"", "0", "-3", "5-4", "a", "3-b", "3-4-5", "99999999999999999999"}) {
    EXPECT_FALSE(ParseCaseRange(text, 10)) << text;
  }
}
