#include <cmath>
#include <limits>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/EngineData.h"
#include "engine/syntax/Expression.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

double Value(const std::string& text, double x, double y) {
  const TORVIKSTRUCT data = Describe({"x", "y"});
  CExpression expression;
  CString problem;
  EXPECT_TRUE(expression.Parse(text, CVariableNames(data), problem)) << text << ": " << problem;
  const double row[] = {x, y};
  const std::int64_t number = 1;
  double out = 0;
  expression.Evaluate({row, 2, 1, &number}, {}, &out);
  return out;
}

TEST(Expression, FollowsTheUsualRules) {
  struct {
    const char* text;
    double want;  // with x = 3, y = 4
  } const cases[] = {
      {"1", 1},         {"x", 3},           {"x+y*2", 11},        {"(x+y)*2", 14}, {"x-y-1", -2},
      {"12/x/2", 2},    {"2**3**2", 512},   {"-x**2", -9},        {"(-x)**2", 9},  {"2**-1", 0.5},
      {"--x", 3},       {"x - -y", 7},      {"1e2*x", 300},       {".5*y", 2},     {"SQRT(y)", 2},
      {"abs( -x )", 3}, {"EXP(LOG(x))", 3}, {" x * y ** 2 ", 48}, {"+x", 3},       {"x*-2", -6},
  };
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(Value(c.text, 3, 4), c.want) << c.text;
}

TEST(Expression, GivesMissingForMissingAndForUndefined) {
  for (const char* text : {"x", "x*0", "x**0", "1**x", "y+x", "ABS(x)", "0*(x-x)"}) {
    EXPECT_TRUE(std::isnan(Value(text, kNaN, 1))) << text;
  }
  for (const char* text : {"LOG(0-y)", "LOG(0)", "1/0", "SQRT(-1)", "(-1)**0.5", "EXP(1000)"}) {
    EXPECT_TRUE(std::isnan(Value(text, 1, 1))) << text;
  }
}

TEST(Expression, CountsUndefinedResultsOfPresentValues) {
  const TORVIKSTRUCT data = Describe({"x"});
  CExpression expression;
  CString problem;
  ASSERT_TRUE(expression.Parse("LOG(x)", CVariableNames(data), problem));
  std::vector<double> cells = {1, 0, kNaN, -1, 2};
  std::vector<std::int64_t> numbers(cells.size(), 1);
  std::vector<double> out(cells.size());
  EXPECT_EQ(expression.Evaluate({cells.data(), 1, cells.size(), numbers.data()}, {}, out.data()),
            2);
}

TEST(Expression, RefusesEverythingElse) {
  const TORVIKSTRUCT data = Describe({"x", "y"});
  for (const char* text :
       {"",      " ",         "x y", "x+",   "*x",    "(x", "x)",    "()",    "FOO(x)", "LOG()",
        "LOG x", "NORMAL(x)", "1e",  "1..2", "x***2", "z",  "x $ y", "LOG(x", "x,y",    "1 2"}) {
    CExpression expression;
    CString problem;
    EXPECT_FALSE(expression.Parse(text, CVariableNames(data), problem)) << text;
    EXPECT_FALSE(problem.empty()) << text;
  }
}

TEST(Expression, RefusesDeepNestingInsteadOfRunningOutOfStack) {
  const TORVIKSTRUCT data = Describe({"x"});
  for (const std::string& text :
       {std::string(100000, '(') + "x", std::string(100000, '-') + "x", [] {
          std::string powers;
          for (int i = 0; i < 100000; ++i) powers += "x**";
          return powers + "x";
        }()}) {
    CExpression expression;
    CString problem;
    EXPECT_FALSE(expression.Parse(text, CVariableNames(data), problem));
    EXPECT_THAT(problem, testing::HasSubstr("nested too deeply"));
  }
}

std::vector<double> Draws(const char* text, std::int64_t first, std::size_t count,
                          const RANDOMSTREAM& stream) {
  const TORVIKSTRUCT data = Describe({"x"});
  CExpression expression;
  CString problem;
  EXPECT_TRUE(expression.Parse(text, CVariableNames(data), problem)) << problem;
  const std::vector<double> cells(count, 0);
  std::vector<std::int64_t> numbers(count);
  std::iota(numbers.begin(), numbers.end(), first);
  std::vector<double> out(count);
  expression.Evaluate({cells.data(), 1, count, numbers.data()}, stream, out.data());
  return out;
}

TEST(Expression, DrawsDependOnSeedRepetitionLineCallAndCaseOnly) {
  const auto whole = Draws("NORMAL()", 1, 2000, {5, 0, 0});
  const auto part = Draws("NORMAL()", 1001, 1000, {5, 0, 0});
  EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + 1000));
  EXPECT_NE(Draws("NORMAL()", 1, 2000, {6, 0, 0}), whole);
  EXPECT_NE(Draws("NORMAL()", 1, 2000, {5, 1, 0}), whole);
  EXPECT_NE(Draws("NORMAL()", 1, 2000, {5, 0, 1}), whole);
  EXPECT_NE(Draws("NORMAL()-NORMAL()", 1, 1, {5, 0, 0})[0], 0);
}

TEST(Expression, DrawsHaveTheirDistributions) {
  constexpr std::size_t kCount = 100000;
  const auto moments = [](const std::vector<double>& x) {
    double mean = 0;
    double square = 0;
    for (const double v : x) {
      mean += v / kCount;
      square += v * v / kCount;
    }
    return std::pair(mean, square - mean * mean);
  };
  // Within five standard errors.
  const auto normal = moments(Draws("NORMAL()", 1, kCount, {1, 0, 0}));
  EXPECT_NEAR(normal.first, 0, 0.016);
  EXPECT_NEAR(normal.second, 1, 0.023);
  const auto uniform = moments(Draws("UNIFORM()", 1, kCount, {1, 0, 0}));
  EXPECT_NEAR(uniform.first, 0.5, 0.0046);
  EXPECT_NEAR(uniform.second, 1.0 / 12, 0.0012);
}

}  // namespace
