#include <limits>
#include <random>

#include "Oracle.h"
#include "engine/stats/NormalityTests.h"
#include "engine/stats/Univariate.h"

namespace {

using oracle::ExpectClose;
using oracle::Json;
using stats::CUnivariate;
using stats::EDeletion;
using stats::EStatus;
using stats::UnivariateResult;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

void ExpectAll(const UnivariateResult& result, const Json& want, const std::string& name) {
  ASSERT_EQ(result.status, EStatus::Ok) << name;
  const stats::NormalityTest test = stats::TestNormality(result);
  const struct {
    const char* key;
    double value;
  } values[] = {{"n", result.n},
                {"mean", result.mean},
                {"sd", result.sd},
                {"min", result.minimum},
                {"max", result.maximum},
                {"skew_g1", result.g1},
                {"kurt_g2", result.g2},
                {"skew_G1", result.G1},
                {"kurt_G2", result.G2},
                {"skew_b1", result.b1},
                {"kurt_b2", result.b2},
                {"z_skew", test.zSkewness},
                {"z_kurt", test.zKurtosis},
                {"p_skew", test.pSkewness},
                {"p_kurt", test.pKurtosis},
                {"K2", test.chiSquare},
                {"p_K2", test.pChiSquare}};
  for (const auto& v : values) ExpectClose(v.value, want.at(v.key), 1e-8, name + " " + v.key);
}

void ExpectVariables(const oracle::Data& data, EDeletion deletion, const Json& want) {
  CUnivariate univariate(data.Variables(), deletion);
  univariate.Add(data.Block());
  for (int j = 0; j < data.Variables(); ++j) {
    const std::string& name = data.names[static_cast<std::size_t>(j)];
    ExpectAll(univariate.Result(j), want.at(name), name);
  }
}

TEST(Univariate, AgreesWithTheReferences) {
  const Json& want = oracle::Screening().at("univariate");
  ExpectVariables(oracle::Items(), EDeletion::Listwise, want.at("items_listwise"));
  ExpectVariables(oracle::Items(), EDeletion::Pairwise, want.at("items_pairwise"));
  ExpectVariables(oracle::ReadCsv("attitude.csv"), EDeletion::Listwise, want.at("attitude"));
}

TEST(Univariate, ReportsWhatCannotBeComputed) {
  struct {
    const char* name;
    std::vector<double> values, weights;
    EStatus status;
    double mean;
  } const cases[] = {
      {"none", {}, {}, EStatus::NoCases, 0},
      {"all missing", {kNaN, kNaN}, {}, EStatus::NoCases, 0},
      {"single", {3}, {}, EStatus::TooFewCases, 3},
      {"one there", {kNaN, 3}, {}, EStatus::TooFewCases, 3},
      {"no weights", {1, 2, 3}, {0, 0, -1}, EStatus::ZeroWeights, 0},
      {"weights that are no numbers", {1, 2}, {kNaN, kInf}, EStatus::ZeroWeights, 0},
      {"constant", {0.1, 0.1, 0.1, 0.1, 0.1, 0.1, 0.1}, {}, EStatus::Constant, 0.1},
      {"single, counted often", {3}, {5}, EStatus::Constant, 3},
      {"infinite", {1, 2, kInf}, {}, EStatus::NotFinite, 0},
      {"beyond the range of powers", {1e200, -1e200, 3}, {}, EStatus::NotFinite, 0},
      {"fine", {1, 2, 6}, {}, EStatus::Ok, 3},
  };
  for (const auto& c : cases) {
    const auto result =
        stats::DescribeColumn(c.values.data(), static_cast<std::int64_t>(c.values.size()),
                              c.weights.empty() ? nullptr : c.weights.data());
    EXPECT_EQ(result.status, c.status) << c.name;
    EXPECT_EQ(result.mean, c.mean) << c.name;
    for (const double x : {result.sd, result.g1, result.G2, result.b2, result.minimum})
      EXPECT_TRUE(std::isfinite(x)) << c.name;
  }
}

TEST(Univariate, KeepsItsDigitsAtAHugeOffset) {
  // Offsets that the values bear exactly, so that the shape must not change at all.
  std::mt19937 random(3);
  std::vector<double> plain(100'000), moved(plain.size());
  for (std::size_t k = 0; k < plain.size(); ++k) {
    plain[k] = static_cast<double>(random() % 1024) / 1024;
    plain[k] *= plain[k];  // 20 binary digits; skewed
    moved[k] = plain[k] + 1073741824.0;
  }
  const auto cases = static_cast<std::int64_t>(plain.size());
  const UnivariateResult a = stats::DescribeColumn(plain.data(), cases);
  const UnivariateResult b = stats::DescribeColumn(moved.data(), cases);
  EXPECT_NEAR(b.sd, a.sd, 1e-13 * a.sd);
  EXPECT_NEAR(b.g1, a.g1, 1e-12 * a.g1);
  EXPECT_NEAR(b.g2, a.g2, 1e-11 * std::fabs(a.g2));
  EXPECT_NEAR(b.mean - 1073741824.0, a.mean, 2.4e-7);  // half a unit in the last place
}

TEST(Univariate, CountsACaseAsOftenAsItsWeightSays) {
  const std::vector<double> values = {2, 5, 5, kNaN, 9, -1, 4};
  const std::vector<double> weights = {3, 1, 2, 4, 1, 0, 6};
  std::vector<double> repeated;
  for (std::size_t k = 0; k < values.size(); ++k)
    repeated.insert(repeated.end(), static_cast<std::size_t>(weights[k]), values[k]);
  const UnivariateResult a = stats::DescribeColumn(values.data(), 7, weights.data());
  const UnivariateResult b =
      stats::DescribeColumn(repeated.data(), static_cast<std::int64_t>(repeated.size()));
  EXPECT_EQ(a.n, b.n);
  EXPECT_NEAR(a.mean, b.mean, 1e-14);
  EXPECT_NEAR(a.variance, b.variance, 1e-13);
  EXPECT_NEAR(a.G1, b.G1, 1e-13);
  EXPECT_NEAR(a.G2, b.G2, 1e-13);
  EXPECT_EQ(a.minimum, 2);  // the case with -1 has no weight
  EXPECT_EQ(a.minimumFrequency, 3);
  EXPECT_EQ(a.maximumFrequency, 1);
  EXPECT_EQ(a.cases, 5);
  EXPECT_EQ(a.missing, 1);
}

// Cases in several blocks, with gaps; a column that is empty in the first block.
TEST(Univariate, BlocksThreadsAndMergingGiveTheSame) {
  std::mt19937 random(5);
  std::normal_distribution<double> normal(100, 15);
  constexpr std::int64_t kCases = 40'000;
  constexpr int kVariables = 11;
  std::vector<double> cells(kCases * kVariables);
  for (double& x : cells) x = random() % 20 == 0 ? kNaN : std::floor(normal(random));
  for (std::int64_t k = 0; k < 10'000; ++k)
    cells[static_cast<std::size_t>(k * kVariables + 4)] = kNaN;
  const auto block = [&](std::int64_t first, std::int64_t end) {
    return stats::CaseBlock{cells.data() + first * kVariables, end - first, kVariables, kVariables,
                            nullptr};
  };
  CUnivariate one(kVariables, EDeletion::Pairwise, 1), two(kVariables, EDeletion::Pairwise, 2);
  CUnivariate front(kVariables, EDeletion::Pairwise, 1), back(kVariables, EDeletion::Pairwise, 1);
  for (CUnivariate* u : {&one, &two}) {
    u->Add(block(0, 9'999));
    u->Add(block(9'999, kCases));
  }
  front.Add(block(0, 9'999));
  back.Add(block(9'999, kCases));
  front.Merge(back);
  for (int j = 0; j < kVariables; ++j) {
    const UnivariateResult a = one.Result(j), b = two.Result(j), c = front.Result(j);
    EXPECT_EQ(a.mean, b.mean);
    EXPECT_EQ(a.m3, b.m3);
    EXPECT_EQ(a.m4, b.m4);
    EXPECT_EQ(a.maximumFrequency, b.maximumFrequency);
    EXPECT_EQ(a.missing, c.missing);
    EXPECT_EQ(a.minimumFrequency, c.minimumFrequency);
    EXPECT_NEAR(a.mean, c.mean, 1e-12 * a.mean);
    EXPECT_NEAR(a.g2, c.g2, 1e-11);
  }
}

TEST(NormalityTest, NeedsEightCases) {
  const std::vector<double> values = {1, 2, 4, 8, 16, 32, 64, 128};
  EXPECT_EQ(stats::TestNormality(stats::DescribeColumn(values.data(), 7)).status,
            EStatus::TooFewCases);
  const stats::NormalityTest test = stats::TestNormality(stats::DescribeColumn(values.data(), 8));
  EXPECT_EQ(test.status, EStatus::Ok);
  EXPECT_GT(test.zSkewness, 2);
}

}  // namespace
