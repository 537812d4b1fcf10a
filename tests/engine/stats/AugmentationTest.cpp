#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "engine/stats/Augmentation.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/NearestDonors.h"
#include "engine/stats/Pooling.h"
#include "engine/stats/RandomStream.h"

namespace {

using Eigen::Index;
using stats::EStatus;

constexpr double kInfinite = std::numeric_limits<double>::infinity();

// Means of x, its square and its fourth power against those of the distribution.
TEST(RandomStream, HasTheMomentsOfItsDistributions) {
  constexpr int kDraws = 200000;
  stats::CRandomStream random({1, 2, 3});
  double normal = 0, square = 0, fourth = 0;
  for (int i = 0; i < kDraws; ++i) {
    const double x = random.Normal();
    normal += x, square += x * x, fourth += x * x * x * x;
  }
  EXPECT_NEAR(normal / kDraws, 0, 0.011);
  EXPECT_NEAR(square / kDraws, 1, 0.016);
  EXPECT_NEAR(fourth / kDraws, 3, 0.11);
  for (const double df : {0.7, 3.0, 40.5}) {
    double sum = 0;
    for (int i = 0; i < kDraws; ++i) sum += random.ChiSquare(df);
    EXPECT_NEAR(sum / kDraws, df, 5 * std::sqrt(2 * df / kDraws));
  }
  EXPECT_EQ(stats::CRandomStream({4, 5}).Bits(), stats::CRandomStream({4, 5}).Bits());
  EXPECT_NE(stats::CRandomStream({4, 5}).Bits(), stats::CRandomStream({5, 4}).Bits());
}

TEST(RandomStream, StaysWithinTheIntervalWithItsMean) {
  const double intervals[][2] = {{-kInfinite, 0.5}, {-0.3, 0.2},      {-2, 3},  {1, 1.2},
                                 {3, kInfinite},    {-kInfinite, -6}, {0.1, 8}, {-9, -8.99}};
  stats::CRandomStream random({9});
  for (const auto& at : intervals) {
    constexpr int kDraws = 40000;
    const double mass = stats::NormalInterval(at[0], at[1]);
    const double mean = (stats::NormalDensity(at[0]) - stats::NormalDensity(at[1])) / mass;
    double sum = 0, squares = 0;
    for (int i = 0; i < kDraws; ++i) {
      const double x = random.NormalWithin(at[0], at[1]);
      ASSERT_TRUE(x >= at[0] && x <= at[1]) << x;
      sum += x, squares += x * x;
    }
    const double sd = std::sqrt(squares / kDraws - sum * sum / kDraws / kDraws);
    EXPECT_NEAR(sum / kDraws, mean, 5 * sd / std::sqrt(kDraws) + 1e-9) << at[0] << ' ' << at[1];
  }
}

// On numbers worked out by hand.
TEST(PoolEstimates, FollowsRubinsRules) {
  const std::vector<double> values = {9, 10, 10.5, 11.5};
  const double mean = 10.25;
  const double between = (1.5625 + .0625 + .0625 + 1.5625) / 3;
  const auto large = stats::PoolEstimates(values, {1, 1, 1, 1}, kInfinite);
  EXPECT_NEAR(large.value, mean, 1e-14);
  EXPECT_NEAR(large.within, 1, 1e-14);
  EXPECT_NEAR(large.between, between, 1e-14);
  EXPECT_NEAR(large.error, std::sqrt(1 + 1.25 * between), 1e-14);
  const double r = 1.25 * between;
  EXPECT_NEAR(large.df, 3 * (1 + 1 / r) * (1 + 1 / r), 1e-10);
  EXPECT_NEAR(large.missingInformation, (r + 2 / (large.df + 3)) / (r + 1), 1e-14);
  const auto small = stats::PoolEstimates(values, {1, 1, 1, 1}, 20);
  const double observed = 21.0 / 23 * 20 * (1 - r / (1 + r));
  EXPECT_NEAR(small.df, 1 / (1 / large.df + 1 / observed), 1e-12);
  EXPECT_NEAR(stats::StudentTwoSided((small.high - small.value) / small.error, small.df), 0.05,
              1e-10);
  const auto same = stats::PoolEstimates({2, 2}, {1, 1}, kInfinite);
  EXPECT_EQ(same.missingInformation, 0);
  EXPECT_NEAR(same.high - 2, 1.959963984540054, 1e-9);
}

// 3 variables, correlations .6, .3, .18; of the second 30% are missing where the first is high.
struct Sample {
  std::vector<double> cells;
  std::vector<std::int64_t> numbers;
  stats::CaseBlock Block() const {
    return {cells.data(), static_cast<std::int64_t>(numbers.size()), 3, 3, nullptr};
  }
};

Sample MakeSample(int cases, int ordinalCategories) {
  std::mt19937 random(5);
  std::normal_distribution<double> normal;
  Sample sample;
  for (int k = 0; k < cases; ++k) {
    const double x = normal(random);
    double y = .6 * x + .8 * normal(random);
    const double z = .3 * x + std::sqrt(.91) * normal(random);
    if (ordinalCategories == 3) y = y < -.5 ? 0 : y < .8 ? 1 : 2;
    if (ordinalCategories == 2) y = y < .3 ? 0 : 1;
    const bool missing = x > .2 && normal(random) > -.2;
    sample.cells.insert(sample.cells.end(), {x, missing ? std::nan("") : y, z});
    sample.numbers.push_back(k + 1);
  }
  return sample;
}

std::vector<stats::AugmentationVariable> Variables(const std::vector<double>& thresholdsOfSecond) {
  std::vector<stats::AugmentationVariable> variables(3);
  variables[1].thresholds = thresholdsOfSecond;
  return variables;
}

stats::AugmentationStart Start() {
  const Eigen::VectorXd zero = Eigen::VectorXd::Zero(3);
  const Eigen::MatrixXd one = Eigen::MatrixXd::Identity(3, 3);
  return {zero, one, Eigen::VectorXd::Unit(3, 1), Eigen::MatrixXd::Zero(3, 3)};
}

stats::AugmentationResult Draw(const stats::CAugmentationSample& sample, int chains, int threads) {
  stats::AugmentationOptions options;
  options.chains = chains;
  options.iterations = 80;
  options.seed = 11;
  options.threads = threads;
  return stats::Augment(sample, Start(), options);
}

// The missing values hang on x, so that what is observed of y is biased (its mean is near -.2);
// the completed data are not. Ordinal: the underlying variable is recovered.
TEST(Augmentation, RecoversWhatMissingValuesHide) {
  struct {
    int categories;
    std::vector<double> thresholds;
  } const cases[] = {{0, {}}, {3, {-.5, .8}}, {2, {.3}}};
  for (const auto& c : cases) {
    const Sample data = MakeSample(3000, c.categories);
    stats::CAugmentationSample sample(Variables(c.thresholds));
    sample.Add(data.Block(), data.numbers.data());
    sample.Finish();
    EXPECT_EQ(sample.Held(), c.categories > 0 ? 3000 : sample.MissingValues());
    const auto result = Draw(sample, 4, 1);
    double mean = 0, correlation = 0;
    for (const auto& chain : result.chains) {
      ASSERT_EQ(chain.status, EStatus::Ok);
      ASSERT_EQ(chain.imputed.size(), sample.MissingValues());
      mean += chain.windows[1].average(1) / 4;
      correlation +=
          chain.covariance(1, 0) / std::sqrt(chain.covariance(0, 0) * chain.covariance(1, 1)) / 4;
    }
    EXPECT_NEAR(mean, 0, 0.1) << c.categories;
    EXPECT_NEAR(correlation, .6, 0.06) << c.categories;
    EXPECT_LT(stats::PotentialScaleReduction(result.chains, 1, 80), 1.5);
    EXPECT_LT(stats::Autocorrelation(result.chains, 20), stats::Autocorrelation(result.chains, 1));
  }
}

TEST(Augmentation, DoesNotDependOnTheNumberOfThreads) {
  for (const int categories : {0, 3}) {
    const Sample data = MakeSample(8000, categories);
    stats::CAugmentationSample sample(
        Variables(categories > 0 ? std::vector{-.5, .8} : std::vector<double>()));
    sample.Add(data.Block(), data.numbers.data());
    sample.Finish();
    const auto one = Draw(sample, 3, 1);
    const auto two = Draw(sample, 3, 2);
    const auto more = Draw(sample, 3, 5);
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_EQ(one.chains[c].imputed, two.chains[c].imputed);
      EXPECT_EQ(one.chains[c].imputed, more.chains[c].imputed);
      EXPECT_EQ(one.chains[c].covariance, more.chains[c].covariance);
    }
    EXPECT_NE(one.chains[0].imputed, one.chains[1].imputed);
  }
}

// Cases without missing values give the distribution of means and covariances themselves: the mean
// has the variance S / n.
TEST(Augmentation, DrawsMeansWithTheirVariance) {
  Sample data = MakeSample(50, 0);
  for (double& cell : data.cells) cell = std::isnan(cell) ? 0.3 : cell;
  stats::CAugmentationSample sample(Variables({}));
  sample.Add(data.Block(), data.numbers.data());
  sample.Finish();
  stats::AugmentationOptions options;
  options.iterations = 8000;
  const auto result = stats::Augment(sample, Start(), options);
  const Eigen::Map<const Eigen::MatrixXd> cells(data.cells.data(), 3, 50);
  const Eigen::VectorXd mean = cells.rowwise().mean();
  const Eigen::MatrixXd centred = cells.colwise() - mean;
  // The mean's marginal distribution is t with n - p degrees of freedom.
  const double variance = centred.row(1).squaredNorm() / 50 / (50 - 3 - 2);
  const auto& window = result.chains[0].windows[1];
  EXPECT_NEAR(window.average(1), mean(1), 5 * std::sqrt(variance / 2000));
  EXPECT_NEAR(window.variance(1) / variance, 1, 0.16);
}

TEST(NearestDonors, FindsWhatASearchThroughAllFinds) {
  std::mt19937 random(3);
  std::normal_distribution<double> normal;
  for (const bool rounded : {false, true}) {
    constexpr std::size_t kDonors = 700;
    stats::CNearestDonors donors(3);
    std::vector<double> matching, values;
    for (std::size_t i = 0; i < kDonors; ++i) {
      for (int j = 0; j < 3; ++j)
        matching.push_back(rounded ? std::round(normal(random)) : normal(random));
      values.push_back(normal(random));
      donors.Add(matching.data() + 3 * i, values.back(), 1);
    }
    donors.Finish();
    for (int query = 0; query < 200; ++query) {
      double at[3];
      for (double& x : at) x = rounded ? std::round(2 * normal(random)) : normal(random);
      double smallest = kInfinite, sum = 0;
      std::int64_t count = 0;
      for (const bool second : {false, true}) {
        for (std::size_t i = 0; i < kDonors; ++i) {
          double distance = 0;
          for (std::size_t j = 0; j < 3; ++j)
            distance += (at[j] - matching[3 * i + j]) * (at[j] - matching[3 * i + j]);
          if (!second) smallest = std::min(smallest, distance);
          if (second && distance <= smallest * (1 + 1e-10)) sum += values[i], ++count;
        }
      }
      const auto match = donors.Find(at);
      EXPECT_NEAR(match.distance, smallest, 1e-12);
      EXPECT_EQ(match.donors, count);
      EXPECT_NEAR(match.mean, sum / static_cast<double>(count), 1e-12);
    }
  }
}

}  // namespace
