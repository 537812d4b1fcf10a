#include <limits>

#include "Oracle.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/PairTables.h"
#include "engine/stats/Thresholds.h"

namespace {

using oracle::ExpectClose;
using oracle::Json;
using stats::EStatus;

void ExpectThresholds(stats::EDeletion deletion, const Json& want) {
  const oracle::Data items = oracle::Items();
  const auto codes = oracle::Codes(items);
  stats::CPairTables tables(std::vector<int>(10, 6), deletion);
  tables.Add(oracle::CodeBlockOf(codes, items));
  for (int j = 0; j < 10; ++j) {
    const std::string& name = items.names[static_cast<std::size_t>(j)];
    const stats::ThresholdResult result = stats::EstimateThresholds(tables.Margin(j));
    ASSERT_EQ(result.status, EStatus::Ok);
    for (std::size_t a = 0; a < 5; ++a)
      ExpectClose(result.threshold[a], want.at(name).at(a), 1e-8, name);
  }
}

TEST(Thresholds, AgreeWithTheReferences) {
  const Json& want = oracle::Screening().at("thresholds");
  ExpectThresholds(stats::EDeletion::Listwise, want.at("listwise"));
  ExpectThresholds(stats::EDeletion::Pairwise, want.at("each_variable_own_n"));
}

TEST(Thresholds, HaveTheStandardErrorOfAQuantile) {
  const auto result = stats::EstimateThresholds({50, 50});
  EXPECT_NEAR(result.threshold[0], 0, 1e-16);
  // sqrt(p (1 - p) / n) / density = 0.05 sqrt(2 pi)
  EXPECT_NEAR(result.standardError[0], 0.05 * 2.5066282746310002, 1e-15);
}

TEST(Thresholds, TakeEmptyCategoriesAndRefuseTheRest) {
  const auto gaps = stats::EstimateThresholds({0, 3, 0, 5, 0});
  ASSERT_EQ(gaps.status, EStatus::Ok);
  EXPECT_EQ(gaps.empty, (std::vector<int>{0, 2, 4}));
  EXPECT_EQ(gaps.threshold[0], -HUGE_VAL);
  EXPECT_EQ(gaps.threshold[1], gaps.threshold[2]);
  EXPECT_EQ(gaps.threshold[3], HUGE_VAL);
  EXPECT_EQ(gaps.standardError[3], 0);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  struct {
    std::vector<double> frequencies;
    EStatus status;
  } const cases[] = {{{}, EStatus::NoCases},
                     {{0, 0}, EStatus::ZeroWeights},
                     {{4}, EStatus::OneCategory},
                     {{0, 7, 0}, EStatus::OneCategory},
                     {{3, nan}, EStatus::NotFinite},
                     {{3, -1}, EStatus::NotFinite},
                     {{3, HUGE_VAL}, EStatus::NotFinite}};
  for (const auto& c : cases) EXPECT_EQ(stats::EstimateThresholds(c.frequencies).status, c.status);
}

// The tail that is summed from above keeps what 1 - F has lost.
TEST(Thresholds, AreSymmetricForRareCategories) {
  const auto low = stats::EstimateThresholds({1, 1e15}),
             high = stats::EstimateThresholds({1e15, 1});
  EXPECT_EQ(low.threshold[0], -high.threshold[0]);
  EXPECT_NEAR(stats::NormalCdf(low.threshold[0]), 1e-15, 1e-27);
}

TEST(NormalScores, AgreeWithTheReferences) {
  for (const char* kind : {"item", "continuous"}) {
    const Json& want = oracle::Screening().at("normal_scores").at(kind);
    const auto values = want.at("values").get<std::vector<double>>();
    const auto result =
        stats::ComputeNormalScores(values, want.at("counts").get<std::vector<double>>());
    ASSERT_EQ(result.status, EStatus::Ok);
    for (std::size_t j = 0; j < values.size(); ++j) {
      ExpectClose(result.score[j], want.at("interval_mean").at(j), 1e-8, kind);
      ExpectClose(result.rescaled[j], want.at("interval_mean_rescaled").at(j), 1e-8, kind);
    }
  }
}

TEST(NormalScores, RefuseWhatHasNoOrder) {
  using stats::ComputeNormalScores;
  EXPECT_EQ(ComputeNormalScores({1, 1}, {2, 2}).status, EStatus::BadArgument);
  EXPECT_EQ(ComputeNormalScores({1, 2, 3}, {2, 2}).status, EStatus::BadArgument);
  EXPECT_EQ(ComputeNormalScores({1, HUGE_VAL}, {2, 2}).status, EStatus::NotFinite);
  EXPECT_EQ(ComputeNormalScores({1, 2}, {2, 0}).status, EStatus::Constant);
  EXPECT_EQ(ComputeNormalScores({1, 2}, {.5, .5}).status, EStatus::TooFewCases);
}

}  // namespace
