#include <limits>

#include <gtest/gtest.h>

#include "datadoc/CaseSelection.h"

namespace {

// Three variables; 9 is a missing value of the second.
TORVIKSTRUCT ThreeVariables() {
  TORVIKSTRUCT data;
  data.variables = 3;
  data.ResizeArrays(3);
  data.variable[0].name = "a";
  data.variable[1].name = "b";
  data.variable[2].name = "CASE";
  data.variable[1].missing[0] = 9;
  return data;
}

struct SelectionCase {
  const char* lines;  // between '|'
  std::vector<double> row;
  std::int64_t number;
  bool keeps;
};

TEST(CaseSelection, KeepsAndRemoves) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  const SelectionCase cases[] = {
      {"SC CASE ODD", {0, 0, 0}, 1, true},
      {"SC CASE ODD", {0, 0, 0}, 2, false},
      {"sc case even", {0, 0, 0}, 2, true},
      {"SC CASE < 10", {0, 0, 0}, 9, true},
      {"SC CASE < 10", {0, 0, 0}, 10, false},
      {"SC CASE > 10", {0, 0, 0}, 10, false},
      {"SC CASE >10.5", {0, 0, 0}, 11, true},
      {"SC CASE < 10000000000", {0, 0, 0}, 5000000000, true},
      {"SC 1 < 2", {1, 5, 5}, 1, true},
      {"SC 1 < 2", {2, 5, 5}, 1, false},
      {"SC 1 < -1e2", {-101, 5, 5}, 1, true},
      {"SC 1 2 < 2 ", {1, 1, 5}, 1, true},
      {"SC 1 2 < 2 ", {1, 2, 5}, 1, false},  // on every variable
      {"SC a-b=2", {2, 2, 5}, 1, true},
      {"SC 2 > 3", {0, 8, 0}, 1, true},
      {"SC 2 > 3", {0, 9, 0}, 1, false},  // missing is neither above nor below
      {"SC 2 < 20", {0, 9, 0}, 1, false},
      {"SC 2 = 9", {0, 9, 0}, 1, true},  // but can be asked for
      {"SC 2 < 20", {0, -999999, 0}, 1, false},
      {"SC 1 < 20", {kNaN, 0, 0}, 1, false},
      {"SC 1 = 0", {kNaN, 0, 0}, 1, false},
      {"SD 1 = 5", {5, 0, 0}, 1, false},
      {"SD 1 = 5", {6, 0, 0}, 1, true},
      {"SD 1 3 = 5", {5, 0, 6}, 1, true},  // removed only where it holds on both
      {"SD 1 < 5", {-999999, 0, 0}, 1, true},
      {"SC CASE ODD|SC 1 > 0", {1, 0, 0}, 1, true},
      {"SC CASE ODD|SC 1 > 0", {0, 0, 0}, 1, false},
      {"SC CASE ODD|SC 1 > 0", {1, 0, 0}, 2, false},
      {"SC CASE ODD|SD 1 = 1", {1, 0, 0}, 3, false},
      {"SC 3 > 1", {0, 0, 2}, 1, true},
  };
  const TORVIKSTRUCT data = ThreeVariables();
  const CVariableNames names(data);
  for (const SelectionCase& c : cases) {
    CCaseSelection selection;
    std::string_view lines = c.lines;
    while (!lines.empty()) {
      const std::size_t end = std::min(lines.find('|'), lines.size());
      CString problem;
      ASSERT_TRUE(selection.AddLine(data, names, lines.substr(0, end), problem)) << problem;
      lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    EXPECT_EQ(selection.Keeps(c.row.data(), c.number), c.keeps) << c.lines << ", case " << c.number;
  }
}

TEST(CaseSelection, DropsTheVariablesOfItsDeletions) {
  const TORVIKSTRUCT data = ThreeVariables();
  const CVariableNames names(data);
  CCaseSelection selection;
  CString problem;
  ASSERT_TRUE(selection.AddLine(data, names, "SC 1 = 1", problem));
  EXPECT_TRUE(selection.DroppedVariables().empty());
  ASSERT_TRUE(selection.AddLine(data, names, "SD 3 1 = 1", problem));
  ASSERT_TRUE(selection.AddLine(data, names, "SD a < 0", problem));
  EXPECT_EQ(selection.DroppedVariables(), (std::vector<std::int32_t>{1, 3}));
  EXPECT_TRUE(selection.Drops(0));
  EXPECT_FALSE(selection.Drops(1));
  EXPECT_FALSE(selection.DropsAllVariables());
  ASSERT_TRUE(selection.AddLine(data, names, "SD 2 < 0", problem));
  EXPECT_TRUE(selection.DropsAllVariables());
}

TEST(CaseSelection, RefusesLinesWithoutChangingAnything) {
  const TORVIKSTRUCT data = ThreeVariables();
  const CVariableNames names(data);
  for (const char* line : {"SC", "SC 1", "SC 1 <", "SC 1 < x", "SC 1 < 2 3", "SC 4 < 1", "SC 0 = 1",
                           "SC < 1", "SC CASE", "SC CASE ODD EVEN", "SC CASE = 1", "SC CASE <",
                           "SD", "SD 1 2", "SD CASE ODD", "SD 1,2 = 3"}) {
    CCaseSelection selection;
    CString problem;
    EXPECT_FALSE(selection.AddLine(data, names, line, problem)) << line;
    EXPECT_FALSE(problem.empty()) << line;
    EXPECT_TRUE(selection.IsEmpty() && selection.DroppedVariables().empty()) << line;
  }
}

TEST(MissingTest, AgreesWithTheTestThatItStandsFor) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  const MissingDefinition owns[] = {kNoMissing,
                                    {1, kNotSet, 3, kNotSet, kNotSet},
                                    {kNotSet, kNotSet, kNotSet, 2, 4},
                                    {9, kNotSet, kNotSet, kNotSet, 4},
                                    {kNaN, kNotSet, kNotSet, 4, 2}};
  const GlobalMissingDefinition globals[] = {kDefaultGlobalMissing,
                                             {7, 8, kNotSet, kNotSet, kNotSet, 99},
                                             {kNotSet, kNotSet, kNotSet, 100, 200, kNotSet},
                                             {kNotSet, 1, kNotSet, kNotSet, 200, -999999}};
  for (const auto& global : globals) {
    for (const auto& own : owns) {
      TORVIKSTRUCT data = ThreeVariables();
      data.missing = global;
      data.variable[0].missing = own;
      const CMissingTest test(data, 0);
      for (const double value : {-999999.0, kNotSet, kNaN, -1e308, 0.0, 1.0, 2.0, 3.0, 3.5, 4.0,
                                 5.0, 7.0, 8.0, 9.0, 99.0, 100.0, 150.0, 200.0, 1e308}) {
        EXPECT_EQ(test(value), IsMissingCell(data, value, 0)) << value;
      }
    }
  }
}

}  // namespace
