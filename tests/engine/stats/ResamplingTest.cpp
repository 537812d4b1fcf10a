#include <cmath>
#include <numeric>
#include <set>
#include <stdexcept>

#include <gtest/gtest.h>

#include "engine/stats/Distributions.h"
#include "engine/stats/Resampling.h"

namespace stats {
namespace {

TEST(SampleStreamTest, StreamsAreUniformAndApart) {
  constexpr int kNumbers = 20000;
  std::set<std::uint64_t> seen;
  for (const std::uint64_t seed : {0U, 1U, 123456U}) {
    for (const std::uint64_t stream : {0U, 1U}) {
      for (const std::uint64_t sample : {0U, 1U, 2U, 1000U}) {
        CSampleStream random(seed, stream, sample);
        double sum = 0, squares = 0, neighbours = 0, last = 0;
        for (int k = 0; k < kNumbers; ++k) {
          const double u = random.Uniform() - .5;
          sum += u;
          squares += u * u;
          neighbours += u * last;
          last = u;
        }
        // Five standard errors of each.
        EXPECT_LT(std::fabs(sum), 5 * std::sqrt(kNumbers / 12.0));
        EXPECT_LT(std::fabs(squares - kNumbers / 12.0), 5 * std::sqrt(kNumbers / 180.0));
        EXPECT_LT(std::fabs(neighbours), 5 * std::sqrt(kNumbers) / 12);
        seen.insert(CSampleStream(seed, stream, sample).Bits());
      }
    }
  }
  EXPECT_EQ(seen.size(), 3U * 2 * 4);
  EXPECT_EQ(CSampleStream(5, 6, 7).Bits(), CSampleStream(5, 6, 7).Bits());
}

TEST(ResamplerTest, DrawsInProportionToTheWeights) {
  for (const std::vector<double>& weights : {std::vector<double>(7, 1.0), std::vector<double>{1},
                                             std::vector<double>{.5, 3, .25, 40, 1e-9},
                                             std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}}) {
    const CResampler resampler(weights);
    EXPECT_DOUBLE_EQ(resampler.N(), std::accumulate(weights.begin(), weights.end(), 0.0));
    constexpr std::int64_t kDraws = 200000;
    std::vector<double> counts, again;
    resampler.Draw(kDraws, CSampleStream(3, 0, 0), counts);
    resampler.Draw(kDraws, CSampleStream(3, 0, 0), again);
    EXPECT_EQ(counts, again);
    EXPECT_EQ(std::accumulate(counts.begin(), counts.end(), 0.0), kDraws);
    for (std::size_t i = 0; i < weights.size(); ++i) {
      const double p = weights[i] / resampler.N();
      EXPECT_LE(std::fabs(counts[i] - p * kDraws), 5 * std::sqrt(kDraws * p * (1 - p)) + 1) << i;
    }
  }
  for (const std::vector<double>& wrong :
       {std::vector<double>{}, {1, 0}, {1, -1}, {1, std::nan("")}, {HUGE_VAL}}) {
    EXPECT_THROW(CResampler{wrong}, std::invalid_argument);
  }
}

// Values 1 to 99 in any order: the share p of B + 1 is 100 p.
std::vector<double> Ranks() {
  std::vector<double> values;
  for (int k = 0; k < 99; ++k) values.push_back(1 + (k * 37) % 99);
  return values;
}

TEST(BootstrapSummaryTest, FollowsItsDefinitions) {
  const auto summary = SummariseSamples(50, Ranks());
  ASSERT_EQ(summary.status, EStatus::Ok);
  EXPECT_DOUBLE_EQ(summary.mean, 50);
  EXPECT_DOUBLE_EQ(summary.bias, 0);
  EXPECT_NEAR(summary.standardError, std::sqrt(99 * 100 / 12.0), 1e-12);
  EXPECT_NEAR(summary.percentile.from, 2.5, 1e-12);
  EXPECT_NEAR(summary.percentile.to, 97.5, 1e-12);
  // Half of the values lie below the estimate: nothing to correct.
  EXPECT_NEAR(summary.corrected.from, 2.5, 1e-12);

  // 20 below, one tie.
  const auto skew = SummariseSamples(21, Ranks());
  EXPECT_DOUBLE_EQ(skew.bias, 29);
  const double z0 = NormalQuantile(20.5 / 99);
  EXPECT_NEAR(skew.corrected.from, std::max(1.0, 100 * NormalCdf(2 * z0 - 1.959963984540054)),
              1e-9);
  EXPECT_NEAR(skew.corrected.to, 100 * NormalCdf(2 * z0 + 1.959963984540054), 1e-9);
  EXPECT_NEAR(skew.percentile.from, 2.5, 1e-12);

  // Samples of a quarter of the cases.
  const auto half = SummariseSamples(50, Ranks(), .5);
  EXPECT_NEAR(half.standardError, summary.standardError / 2, 1e-12);
  EXPECT_NEAR(half.percentile.from, 50 - 47.5 / 2, 1e-12);
  EXPECT_NEAR(SummariseSamples(21, Ranks(), .5).bias, 29.0 / 4, 1e-12);
  EXPECT_NEAR(SummariseSamples(50, Ranks(), 1, .9).percentile.to, 95, 1e-12);
}

TEST(BootstrapSummaryTest, SaysWhatCannotBeHad) {
  EXPECT_EQ(SummariseSamples(1, {}).status, EStatus::TooFewCases);
  EXPECT_EQ(SummariseSamples(1, {2}).status, EStatus::TooFewCases);
  EXPECT_EQ(SummariseSamples(1, {2, std::nan("")}).status, EStatus::NotFinite);
  const auto aside = SummariseSamples(1, {2, 3, 4});
  EXPECT_EQ(aside.status, EStatus::Ok);
  EXPECT_FALSE(aside.hasCorrected);
  EXPECT_DOUBLE_EQ(aside.percentile.from, 2);
  EXPECT_DOUBLE_EQ(aside.percentile.to, 4);
  const auto same = SummariseSamples(2, {2, 2, 2});
  EXPECT_DOUBLE_EQ(same.standardError, 0);
  EXPECT_DOUBLE_EQ(same.corrected.to, 2);
}

}  // namespace
}  // namespace stats
