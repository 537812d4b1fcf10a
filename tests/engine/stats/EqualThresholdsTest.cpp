#include <cmath>
#include <random>

#include "Oracle.h"
#include "engine/stats/CommonThresholds.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/EqualThresholds.h"
#include "engine/stats/FixedThresholds.h"
#include "engine/stats/Homogeneity.h"

namespace {

using oracle::ExpectClose;
using oracle::Json;
using stats::EStatus;

// The table of two items over the cases that are complete in all ten.
stats::FrequencyTable ItemTable(const char* row, const char* column) {
  const oracle::Data items = oracle::Items();
  const auto at = [&](const char* name) {
    return std::find(items.names.begin(), items.names.end(), name) - items.names.begin();
  };
  stats::FrequencyTable table{6, 6, std::vector<double>(36, 0)};
  for (std::int64_t k = 0; k < items.Cases(); ++k) {
    const double* cells = items.cells.data() + 10 * k;
    if (std::any_of(cells, cells + 10, [](double x) { return std::isnan(x); })) continue;
    table.count[stats::CellIndex(static_cast<int>(cells[at(row)]) - 1, 6,
                                 static_cast<int>(cells[at(column)]) - 1)] += 1;
  }
  return table;
}

TEST(Homogeneity, AgreesWithTheReference) {
  const auto result = stats::TestHomogeneity(ItemTable("A2", "A3"));
  const Json& want = oracle::Load("procedures.json").at("homogeneity");
  ASSERT_EQ(result.status, EStatus::Ok);
  ExpectClose(result.n, want.at("n"), 0, "n");
  ExpectClose(result.stuartMaxwell, want.at("stuart_maxwell"), 1e-11, "Stuart-Maxwell");
  ExpectClose(result.pStuartMaxwell, want.at("p_stuart_maxwell"), 1e-9, "p");
  ExpectClose(result.bhapkar, want.at("bhapkar"), 1e-11, "Bhapkar");
  ExpectClose(result.bowker, want.at("bowker_symmetry"), 1e-11, "Bowker");
  EXPECT_EQ(result.df, want.at("df").get<int>());
  EXPECT_EQ(result.dfBowker, want.at("df_bowker").get<int>());
}

// Two categories: McNemar's test. A category that nobody has does not count.
TEST(Homogeneity, OfTwoCategoriesIsMcNemar) {
  const auto result = stats::TestHomogeneity({3, 3, {20, 0, 15, 0, 0, 0, 5, 0, 30}});
  ASSERT_EQ(result.status, EStatus::Ok);
  EXPECT_EQ(result.df, 1);
  EXPECT_NEAR(result.stuartMaxwell, 100.0 / 20, 1e-12);
  EXPECT_NEAR(result.bowker, 100.0 / 20, 1e-12);
  EXPECT_EQ(stats::TestHomogeneity({2, 2, {9, 0, 0, 9}}).status, EStatus::Boundary);
  EXPECT_EQ(stats::TestHomogeneity({2, 3, {9, 0, 0, 9, 1, 1}}).status, EStatus::BadArgument);
}

TEST(EqualThresholds, AgreeWithTheReference) {
  const auto result = stats::TestEqualThresholds(ItemTable("A2", "A3"));
  const Json& want = oracle::Load("procedures.json").at("equal_thresholds").at("test");
  ASSERT_EQ(result.status, EStatus::Ok);
  EXPECT_LT(result.gradient, 1e-13);
  // The reference's optimiser stopped a little earlier: its likelihood is lower by 1e-12.
  for (std::size_t t = 0; t < 5; ++t) {
    ExpectClose(result.threshold[t], want.at("thresholds_equal").at(std::to_string(t + 1)), 5e-7,
                "threshold");
  }
  EXPECT_LT(-2 * result.logLikelihoodEqual, want.at("minus2ll_equal").get<double>() + 1e-9);
  ExpectClose(result.r, want.at("rho_equal"), 2e-7, "correlation");
  ExpectClose(result.rFree, want.at("rho_free_jointML"), 1e-7, "free correlation");
  ExpectClose(-2 * result.logLikelihoodEqual, want.at("minus2ll_equal"), 1e-10, "equal");
  ExpectClose(-2 * result.logLikelihoodFree, want.at("minus2ll_free"), 1e-10, "free");
  ExpectClose(result.ratio, want.at("LR"), 1e-7, "ratio");
  EXPECT_EQ(result.df, want.at("df").get<int>());
}

TEST(EqualThresholds, NeedTheSameCategoriesWithCases) {
  EXPECT_EQ(stats::TestEqualThresholds({2, 3, {5, 6, 7, 8, 9, 3}}).status, EStatus::BadArgument);
  EXPECT_EQ(stats::TestEqualThresholds({3, 3, {5, 0, 7, 8, 0, 3, 1, 0, 9}}).status,
            EStatus::BadArgument);
}

// Three variables with the same thresholds: the test holds its level, the common thresholds lie
// near the true ones; with other thresholds it rejects.
TEST(CommonThresholds, TellEqualFromUnequal) {
  for (const double shift : {0.0, 0.3}) {
    std::mt19937 random(6);
    std::normal_distribution<double> normal;
    constexpr int kCases = 3'000;
    std::vector<std::uint8_t> codes(3 * kCases);
    for (int k = 0; k < kCases; ++k) {
      const double common = normal(random);
      for (int j = 0; j < 3; ++j) {
        const double x = std::sqrt(.5) * (common + normal(random)) + (j == 2 ? shift : 0);
        codes[static_cast<std::size_t>(j * kCases + k)] =
            static_cast<std::uint8_t>((x > -.5 ? 1 : 0) + (x > .8 ? 1 : 0));
      }
    }
    stats::CPairTables tables({3, 3, 3}, stats::EDeletion::Listwise);
    tables.Add({codes.data(), kCases, 3, kCases, nullptr});
    const auto result = stats::EstimateCommonThresholds(tables);
    ASSERT_EQ(result.status, EStatus::Ok);
    EXPECT_EQ(result.df, 4);
    if (shift > 0) {
      EXPECT_LT(result.p, 1e-10);
      continue;
    }
    EXPECT_GT(result.p, 0.01);
    EXPECT_NEAR(result.threshold[0], -.5, 4 * result.standardError[0]);
    EXPECT_NEAR(result.threshold[1], .8, 4 * result.standardError[1]);
    EXPECT_LT(result.standardError[0], .025);
  }
}

TEST(FixedThresholds, FindMeanAndDeviationThatMadeTheFrequencies) {
  const std::vector<double> thresholds = {-1, 0.2, 1.5};
  constexpr double kMean = 0.4, kSd = 1.3, kCases = 1e6;
  std::vector<double> frequencies;
  double below = 0;
  for (const double t : thresholds) {
    const double cumulative = stats::NormalCdf((t - kMean) / kSd);
    frequencies.push_back(kCases * (cumulative - below));
    below = cumulative;
  }
  frequencies.push_back(kCases * (1 - below));
  const auto result = stats::EstimateUnderThresholds(frequencies, thresholds);
  ASSERT_EQ(result.status, EStatus::Ok);
  EXPECT_NEAR(result.mean, kMean, 1e-9);
  EXPECT_NEAR(result.sd, kSd, 1e-9);
  EXPECT_NEAR(result.fitted.likelihoodRatio, 0, 1e-6);
  EXPECT_EQ(result.fitted.df, 1);
  EXPECT_EQ(result.standard.df, 3);
  EXPECT_LT(result.standard.p, 1e-10);
  struct {
    std::vector<double> frequencies, thresholds;
    EStatus status;
  } const bad[] = {{{5, 5, 5}, {1}, EStatus::BadArgument},
                   {{5, 5, 5}, {1, 0}, EStatus::BadArgument},
                   {{5, 5, 0}, {0, 1}, EStatus::Boundary},
                   {{0, 5, 0}, {0, 1}, EStatus::OneCategory},
                   {{0, 0, 0}, {0, 1}, EStatus::ZeroWeights}};
  for (const auto& b : bad)
    EXPECT_EQ(stats::EstimateUnderThresholds(b.frequencies, b.thresholds).status, b.status);
}

}  // namespace
