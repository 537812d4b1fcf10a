#include <gtest/gtest.h>

#include "dataview/definition/NewVariables.h"

namespace {

constexpr const char* kNotCorrect = "The entry of variable names is not correct!";
constexpr const char* kNotRising =
    "The two variables should have the same name and the second variable should have higher index!";

TORVIKSTRUCT CopyOf(std::int32_t variables, std::int32_t capacity) {
  TORVIKSTRUCT copy;
  copy.variables = variables;
  copy.ResizeArrays(static_cast<std::size_t>(capacity));
  return copy;
}

std::vector<CString> NamesAfter(const char* text, std::int32_t present = 0) {
  CString problem;
  const auto added = ParseNewVariables(text, present, problem);
  EXPECT_TRUE(added.has_value()) << text << ": " << problem;
  if (!added) return {};
  std::int32_t capacity = 8;
  TORVIKSTRUCT copy = CopyOf(present, capacity);
  AppendVariables(*added, copy, capacity);
  EXPECT_GE(capacity, copy.variables);
  EXPECT_EQ(capacity % 8, 0);
  EXPECT_GE(copy.categoryLabels.size(), copy.variable.size() * kCategorySlots);
  std::vector<CString> names;
  for (std::int32_t i = present; i < copy.variables; ++i) {
    names.push_back(copy.variable[static_cast<std::size_t>(i)].name);
    EXPECT_EQ(copy.variable[static_cast<std::size_t>(i)].missing, kNoMissing);
  }
  return names;
}

TEST(NewVariables, NamesWhatTheEntrySays) {
  using Names = std::vector<CString>;
  const struct {
    const char* text;
    Names want;
  } cases[] = {
      {"var1 - var5", {"var1", "var2", "var3", "var4", "var5"}},
      {"var1-var3", {"var1", "var2", "var3"}},
      {"x09 - X11", {"x9", "x10", "x11"}},
      {"8 - 10", {"8", "9", "10"}},
      {"age", {"age"}},
      {"two words", {"two words"}},
      {"abcdefghijklmnopqrst", {"abcdefghijklmnop"}},
      {"abcdefghijklmnop1 - abcdefghijklmnop2", {"abcdefghijklmnop", "abcdefghijklmnop"}},
  };
  for (const auto& c : cases) EXPECT_EQ(NamesAfter(c.text), c.want) << c.text;
  EXPECT_EQ(NamesAfter("v1 - v20", 3).size(), 20U);
}

TEST(NewVariables, RefusesWhatIsNoRange) {
  const struct {
    const char* text;
    const char* want;
  } cases[] = {
      {"x3-x3", kNotRising},        {"a1 - b4", kNotRising},
      {"x5 - x2", kNotRising},      {"var1 - varA", kNotCorrect},
      {"var - 5", kNotCorrect},     {"-", kNotCorrect},
      {"x1 - ", kNotCorrect},       {" - x1", kNotCorrect},
      {"x1 - x2 - x3", kNotRising}, {"x1 - x99999999999999999999", kNotCorrect},
  };
  for (const auto& c : cases) {
    CString problem;
    EXPECT_FALSE(ParseNewVariables(c.text, 0, problem).has_value()) << c.text;
    EXPECT_EQ(problem, c.want) << c.text;
  }
}

TEST(NewVariables, KeepsToTheVariablesThatCanBeNumbered) {
  CString problem;
  EXPECT_TRUE(ParseNewVariables("x1 - x32767", 0, problem).has_value());
  EXPECT_FALSE(ParseNewVariables("x1 - x32767", 1, problem).has_value());
  EXPECT_FALSE(ParseNewVariables("x1 - x2147483647", 0, problem).has_value());
  EXPECT_NE(problem.find("32767"), CString::npos) << problem;
  EXPECT_FALSE(ParseNewVariables("one", 32767, problem).has_value());
}

// Only the first new record of a range is set; what the others bring along stays.
TEST(NewVariables, SetsTheMissingValuesOfTheFirstNewRecordOnly) {
  std::int32_t capacity = 16;
  TORVIKSTRUCT copy = CopyOf(2, capacity);
  for (VARSTRUCT& record : copy.variable) record.missing[0] = 7;
  AppendVariables({"x", 1, 3}, copy, capacity);
  EXPECT_EQ(copy.variable[2].missing, kNoMissing);
  EXPECT_EQ(copy.variable[3].missing[0], 7);
  EXPECT_EQ(copy.variable[1].missing[0], 7) << "an old variable";
}

}  // namespace
