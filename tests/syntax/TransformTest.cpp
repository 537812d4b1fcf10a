// Computations and recodings before the engine sees them.
#include <gtest/gtest.h>

#include "support/TempFolder.h"
#include "support/VsfBytes.h"
#include "syntax/transform/RecodeCounts.h"
#include "syntax/transform/TransformCheck.h"

namespace {

TORVIKSTRUCT Named(const std::vector<const char*>& names) {
  TORVIKSTRUCT data;
  data.variables = static_cast<std::int32_t>(names.size());
  data.ResizeArrays(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) data.variable[i].name = names[i];
  return data;
}

}  // namespace

TEST(Transform, ExpressionsAreReadAsTheEngineReadsThem) {
  const TORVIKSTRUCT data = Named({"age", "A1", "two words", "12"});
  const struct {
    const char* expression;
    bool inOrder;
  } cases[] = {
      {"age + 2 * LOG(A1) ** -0.5", true},
      {"first / 2", true},    // an earlier computation made it
      {"second / 2", false},  // is made here
      {"later", false},
      {"age +", false},
      {"Age", false},
      {"SIN(age)", false},
      {"age ! comment", false},
      {"two words", false},
      {"", false},
  };
  for (const auto& c : cases) {
    const std::vector<Computation> all = {{"first", "1"}, {"second", c.expression}, {"later", "1"}};
    EXPECT_EQ(ExpressionProblem(data, all, 1).empty(), c.inOrder) << c.expression;
    const ComputeChoices choices{{all[0], all[1]}, "n.VSF"};
    EXPECT_EQ(TransformProblem(data, choices).has_value(), !c.inOrder) << c.expression;
  }
  for (const auto& variable : data.variable) {
    EXPECT_EQ(CanStandInExpression(variable.name), variable.name == "age" || variable.name == "A1");
  }
}

TEST(Transform, RulesAreReadAsTheEngineReadsThem) {
  const struct {
    const char* old;
    const char* value;
    bool inOrder;
  } cases[] = {
      {"1", "2", true},       {"1, 3 - 5", "0", true},
      {"LO-0", "-1.5", true}, {"2-HI,-999999", "1", true},
      {"5-3", "1", false},    {"one", "1", false},
      {"1;2", "1", false},    {"1", "x", false},
      {"", "1", false},
  };
  const TORVIKSTRUCT data = Named({"age"});
  for (const auto& c : cases) {
    EXPECT_EQ(RuleProblem(data, {c.old, c.value}).empty(), c.inOrder) << c.old << ' ' << c.value;
  }
}

TEST(Transform, CountsTheCellsThatEachRuleFits) {
  const TempFolder folder;
  const CString file = folder / "d.VSF";
  WriteBytes(file, Bytes()
                       .Add(VsfHead("VEXC16 DATA SYSTEM FILE", ' ', 4, 2))
                       .Add(VsfVariable("a", 16))
                       .Add(VsfVariable("b", 16))
                       .Reals({1, 2, 2, 3, -999999, 4, 9, 9})
                       .Get());
  const RecodeChoices choices{{"a", "b"}, {{"2", "0"}, {"1-4", "1"}, {"-999999", "8"}}, ""};
  const auto counts = CountRecoded(file, choices, 100);
  ASSERT_TRUE(counts);
  EXPECT_EQ(counts->cells, (std::vector<std::int64_t>{2, 3, 1}));
  EXPECT_EQ(counts->others, 2);
  EXPECT_EQ(counts->cases, 4);
  EXPECT_TRUE(counts->all);

  // A range takes no missing value; the first cases alone.
  const auto some = CountRecoded(file, {{"a"}, {{"LO-HI", "0"}}, ""}, 7);
  ASSERT_TRUE(some);
  EXPECT_EQ(some->cells, std::vector<std::int64_t>{2});
  EXPECT_EQ(some->others, 1);
  EXPECT_EQ(some->cases, 3);
  EXPECT_FALSE(some->all);

  EXPECT_FALSE(CountRecoded(folder / "absent", choices, 100));
  EXPECT_FALSE(CountRecoded(file, {{"a"}, {{"x", "0"}}, ""}, 100));
  EXPECT_FALSE(CountRecoded(file, {{"c"}, {{"1", "0"}}, ""}, 100));
}
