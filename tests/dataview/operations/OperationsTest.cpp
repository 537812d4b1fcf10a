// Lines of a selection, printed pages, statistics in pieces.
#include <gtest/gtest.h>

#include "dataview/operations/MergeStatistics.h"
#include "dataview/operations/PrintPages.h"
#include "dataview/operations/SelectionLines.h"

namespace {

TORVIKSTRUCT NamedVariables(std::int32_t count) {
  TORVIKSTRUCT data;
  data.variables = count;
  data.ResizeArrays(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) {
    data.variable[static_cast<std::size_t>(i)].name = "V" + std::to_string(i + 1) + "  ";
  }
  return data;
}

TEST(SelectionLines, SayWhatTheRulesSay) {
  const TORVIKSTRUCT data = NamedVariables(6);
  const struct {
    SelectionRule rule;
    const char* display;
    const char* syntax;
  } cases[] = {
      {SelectByCaseNumber(CaseNumberRule::Odd, "4"), "Select those cases number that are odd ",
       "SC CASE ODD "},
      {SelectByCaseNumber(CaseNumberRule::Even, ""), "Select those cases number that are even ",
       "SC CASE EVEN "},
      {SelectByCaseNumber(CaseNumberRule::LessThan, "10"),
       "Select those cases number that are less than 10", "SC CASE < 10"},
      {SelectByCaseNumber(CaseNumberRule::GreaterThan, "1e3"),
       "Select those cases number that are greater than 1e3", "SC CASE > 1e3"},
      {SelectByValue({ValueOperator::EqualTo, "9", true, {1, 4}}, data),
       "Select those cases with value equal to 9 and delete: V2 V5 ", "SD 2 5 = 9"},
      {SelectByValue({ValueOperator::LessThan, "0.5", false, {0}}, data),
       "Select those cases with value less than 0.5: V1 ", "SC 1 < 0.5"},
      {SelectByValue({ValueOperator::GreaterThan, "-1", false, {5}}, data),
       "Select those cases with value greater than -1: V6 ", "SC 6 > -1"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.rule.display, c.display);
    EXPECT_EQ(c.rule.syntax, c.syntax);
    EXPECT_EQ(ProblemOfRules(data, {c.rule.syntax}), "") << c.syntax;
  }
}

TEST(SelectionLines, RefuseRulesThatSelectNothing) {
  const TORVIKSTRUCT data = NamedVariables(2);
  for (const char* line : {"SC CASE < abc", "SC 1 < ", "SC < 4", "SD 1 2 = 9"}) {
    EXPECT_NE(ProblemOfRules(data, {line}), "") << line;
  }
  EXPECT_NE(ProblemOfRules(data, {"SD 1 = 9", "SD 2 = 9"}), "") << "no variable would be left";
}

TEST(SelectionLines, EndARunWithItsOutputForm) {
  EXPECT_EQ(SelectionJobLines({"SC CASE ODD "}, {}), (CStringList{"SC CASE ODD ", "OU XM"}));
  EXPECT_EQ(SelectionJobLines({}, {0, 4}), (CStringList{"\nSE 1 5 ", "OU XM"}));
  std::vector<std::int32_t> many;
  for (std::int32_t i = 1000; i < 1100; ++i) many.push_back(i);
  const CString lines = SelectionJobLines({}, many).front();
  std::size_t longest = 0;
  for (std::size_t at = 0; at < lines.size();) {
    const std::size_t end = std::min(lines.find('\n', at), lines.size());
    longest = std::max(longest, end - at);
    at = end + 1;
  }
  EXPECT_LE(longest, 78U);
  EXPECT_GT(longest, 70U);
}

TEST(SelectionLines, TellWhatGoes) {
  const TORVIKSTRUCT data = NamedVariables(20);
  SelectionEffect effect{100, 30, {1, 4}};
  const CString few = DescribeSelection(effect, data);
  EXPECT_EQ(few.rfind("30 of 100 cases are removed from the data set, and so are these variables:\n"
                      "V2, V5.",
                      0),
            0U)
      << few;
  for (std::int32_t i = 5; i < 20; ++i) effect.variables.push_back(i);
  EXPECT_NE(DescribeSelection(effect, data).find(" and 5 more."), CString::npos);
}

// Every cell is on exactly one page.
TEST(PrintPages, HoldEveryCellOnce) {
  const struct {
    double width, height;
    std::vector<double> columns;
    CaseRange cases;
    std::int64_t pages;
  } cases[] = {
      {100, 110, {20, 20, 20}, {0, 10}, 1},          // all on one
      {100, 110, {20, 20, 20}, {0, 11}, 2},          // one case more than a page holds
      {100, 110, {40, 40, 40}, {3, 25}, 6},          // two pages across, three down
      {100, 110, {500, 20, 500}, {0, 1}, 3},         // columns that are too wide
      {100, 5, {20}, {0, 3}, 3},                     // no room for a row: one each
      {100, 110, {20}, {5, 5}, 0},                   // no cases
      {100, 110, {}, {0, 5}, 0},                     // no columns
      {100, 110, {80}, {0, 2147483647}, 214748365},  // all that there can be
  };
  for (const auto& c : cases) {
    const CPrintPages pages({c.width, c.height, 10, 10, c.columns, c.cases});
    ASSERT_EQ(pages.Count(), c.pages);
    if (c.pages == 0) continue;
    EXPECT_EQ(pages.Page(c.pages - 1).cases.end, c.cases.end);
    if (c.pages > 1000) continue;
    std::int64_t cells = 0;
    for (std::int64_t i = 0; i < c.pages; ++i) {
      const PrintPage page = pages.Page(i);
      EXPECT_LT(page.cases.begin, page.cases.end);
      cells += (page.cases.end - page.cases.begin) * (page.columnEnd - page.columnBegin);
    }
    EXPECT_EQ(cells, (c.cases.end - c.cases.begin) * static_cast<std::int64_t>(c.columns.size()));
  }
}

TEST(MergeStatistics, IsWhatTheWholeComesTo) {
  const RangeStatistics low{2, 1, 1.5, 1, 2};
  const RangeStatistics high{6, 2, 9.5, 4, 20};
  const RangeStatistics none{0, 5, 0, 0, 0};
  const RangeStatistics both = MergeStatistics(low, high);
  EXPECT_EQ(both.values, 8);
  EXPECT_EQ(both.missing, 3);
  EXPECT_DOUBLE_EQ(both.mean, (2 * 1.5 + 6 * 9.5) / 8);
  EXPECT_EQ(both.minimum, 1);
  EXPECT_EQ(both.maximum, 20);
  for (const RangeStatistics& one : {MergeStatistics(none, high), MergeStatistics(high, none)}) {
    EXPECT_EQ(one.values, 6);
    EXPECT_EQ(one.missing, 7);
    EXPECT_EQ(one.minimum, 4) << "nothing is no zero";
  }
}

}  // namespace
