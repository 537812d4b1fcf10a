// Types, missing values and categories: what the dialogs take over, and to whom it is applied.
#include <cmath>

#include <gtest/gtest.h>

#include "dataview/definition/ApplyToVariables.h"
#include "dataview/definition/CategoryItems.h"
#include "dataview/definition/MissingEntries.h"

namespace {

TORVIKSTRUCT FiveVariables() {
  TORVIKSTRUCT data;
  data.variables = 5;
  data.ResizeArrays(8);
  for (std::size_t i = 0; i < 5; ++i) data.variable[i].name = "x" + std::to_string(i + 1);
  return data;
}

std::vector<std::int32_t> Types(const TORVIKSTRUCT& data) {
  std::vector<std::int32_t> types;
  for (std::size_t i = 0; i < 5; ++i) types.push_back(data.variable[i].type);
  return types;
}

TEST(Definition, GivesTheTypeToTheSelectedOrToAll) {
  using Types5 = std::vector<std::int32_t>;
  for (const bool all : {false, true}) {
    TORVIKSTRUCT data = FiveVariables();
    data.variable[1].type = kCensoredBoth;
    ApplyType(data, {1, 3}, all);
    EXPECT_EQ(Types(data), all ? Types5({4, 4, 4, 4, 4}) : Types5({0, 4, 0, 4, 0}));
  }
}

// "Apply to all" reaches as many variables as are selected, from the first one on.
TEST(Definition, LimitsApplyToAllToTheNumberSelected) {
  const struct {
    bool all;
    std::vector<bool> has;
  } cases[] = {
      {false, {false, false, true, false, true}},
      {true, {true, true, true, false, false}},
  };
  for (const auto& c : cases) {
    TORVIKSTRUCT data = FiveVariables();
    data.variable[2].missing = {9, kNotSet, kNotSet, 90, 99};
    CString problem;
    ASSERT_TRUE(TakeCategoryItems({"1 = lo", "2 = hi"}, data, 2, problem));
    ApplyMissing(data, {2, 4}, c.all);
    ApplyCategories(data, {2, 4}, c.all);
    for (std::size_t i = 0; i < 5; ++i) {
      EXPECT_EQ(data.variable[i].missing == data.variable[2].missing, c.has[i]) << i << c.all;
      EXPECT_EQ(data.variable[i].categories, c.has[i] ? 2 : 0) << i << c.all;
      EXPECT_EQ(CategoryLabelOf(data, static_cast<std::int32_t>(i), 2), c.has[i] ? "hi" : "");
    }
  }
}

TEST(Definition, ReadsMissingValuesWithoutFurtherChecks) {
  const struct {
    MissingTexts texts;
    MissingDefinition want;
  } cases[] = {
      {{"9", "", "-8.5", "", ""}, {9, kNotSet, -8.5, kNotSet, kNotSet}},
      {{"12abc", "abc", "1e3", "", ""}, {12, 0, 1000, kNotSet, kNotSet}},
      {{"", "", "", "90", "99"}, {kNotSet, kNotSet, kNotSet, 90, 99}},
      {{"", "", "", "", "99"}, kNoMissing},
      {{"", "", "", "90", ""}, kNoMissing},
      {{" ", "", "", "x", "5"}, {0, kNotSet, kNotSet, 0, 5}},
      {{"1e999", "", "", "", ""}, {HUGE_VAL, kNotSet, kNotSet, kNotSet, kNotSet}},
  };
  for (const auto& c : cases) {
    TORVIKSTRUCT data = FiveVariables();
    MissingEntries entries;
    entries.noMissing = false;
    entries.variable = entries.global = c.texts;
    entries.deletion = kPairwise;
    TakeMissingEntries(entries, data.variable[0], data);
    EXPECT_EQ(data.variable[0].missing, c.want) << c.texts[0] << '|' << c.texts[4];
    for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(data.missing[i], c.want[i]) << c.texts[0];
    EXPECT_EQ(data.missing[kGlobalValue], kMissingCode);
    EXPECT_EQ(data.deletion, kPairwise);
  }
}

TEST(Definition, ShowsMissingValuesAndKeepsWhatIsLeftAlone) {
  TORVIKSTRUCT data = FiveVariables();
  EXPECT_TRUE(OpenMissingEntries(data.variable[0], data).noMissing);
  const MissingDefinition before = {0.123456789, kNotSet, 5, 1, kNotSet};
  data.variable[0].missing = before;
  MissingEntries entries = OpenMissingEntries(data.variable[0], data);
  EXPECT_FALSE(entries.noMissing);
  EXPECT_EQ(entries.variable, (MissingTexts{"0.123457", "", "5.000000", "", ""}))
      << "half a range is not shown";
  TakeMissingEntries(entries, data.variable[0], data);
  EXPECT_EQ(data.variable[0].missing[0], before[0]) << "with all its digits";
  entries.noMissing = true;
  TakeMissingEntries(entries, data.variable[0], data);
  EXPECT_EQ(data.variable[0].missing, kNoMissing);
}

TEST(Definition, ReadsCategoriesFromTheirItems) {
  TORVIKSTRUCT data = FiveVariables();
  CString problem;
  ASSERT_TRUE(TakeCategoryItems({"1 = low", "-2 =  b ", "abc = x", "7", "8 =", "9 = a=b"}, data, 1,
                                problem));
  EXPECT_EQ(CategoryItems(data, 1),
            (std::vector<CString>{"1 = low", "-2 =  b ", "0 = x", "7 = ", "8 = ", "9 = a=b"}));
  EXPECT_EQ(CategoryLabelOf(data, 1, -2), "b");
  EXPECT_EQ(CategoryLabelOf(data, 1, 1.5), "");
  EXPECT_EQ(CategoryLabelOf(data, 0, 1), "");
}

TEST(Definition, TakesFifteenCategoriesAtMostWhateverTheType) {
  TORVIKSTRUCT data = FiveVariables();
  data.variable[0].type = kContinuous;
  std::vector<CString> items(15, "1 = a");
  CString problem;
  EXPECT_TRUE(TakeCategoryItems(items, data, 0, problem));
  items.push_back("2 = b");
  EXPECT_FALSE(TakeCategoryItems(items, data, 0, problem));
  EXPECT_EQ(problem, "An ordinal variable cannot have more than 15 categories!");
  EXPECT_EQ(data.variable[0].categories, 15);
  EXPECT_FALSE(NewCategoryItem("1", "", problem).has_value());
  EXPECT_EQ(problem, "Please enter both the label and value field!");
  EXPECT_EQ(NewCategoryItem("1", "lo", problem), "1 = lo");
}

}  // namespace
