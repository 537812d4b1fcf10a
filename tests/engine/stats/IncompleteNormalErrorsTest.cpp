#include <cmath>
#include <random>

#include "IncompleteSamples.h"
#include "Oracle.h"
#include "engine/stats/IncompleteNormalErrors.h"

namespace {

using Eigen::Index;
using oracle::Json;
using stats::EStatus;

stats::IncompleteNormalErrors Errors(const stats::CaseBlock& block, int threads = 1) {
  const auto patterns = incomplete::Patterns(block);
  const auto result = stats::EstimateIncompleteNormal(patterns, 20000, 1e-12);
  EXPECT_EQ(result.status, EStatus::Ok);
  return stats::ComputeIncompleteNormalErrors(patterns, result, threads);
}

void ExpectReference(const oracle::Data& data, const std::vector<double>& weights,
                     const char* key) {
  stats::CaseBlock block = data.Block();
  if (!weights.empty()) block.weights = weights.data();
  const auto errors = Errors(block);
  ASSERT_EQ(errors.status, EStatus::Ok) << key;
  const Json& want = oracle::Load("em_errors.json").at(key);
  const auto near = [&](double got, const Json& value, const char* what) {
    EXPECT_NEAR(got, value.get<double>(), 1e-8 * value.get<double>()) << key << ' ' << what;
  };
  for (std::size_t i = 0; i < data.names.size(); ++i) {
    const auto row = static_cast<Index>(i);
    near(errors.mean(row), want.at("se_mean")[i], "mean");
    near(errors.sd(row), want.at("se_sd")[i], "sd");
    for (std::size_t j = 0; j < data.names.size(); ++j) {
      const auto column = static_cast<Index>(j);
      near(errors.covariance(row, column), want.at("se_cov")[i][j], "covariance");
      near(errors.correlation(row, column), want.at("se_cor")[i][j], "correlation");
    }
  }
}

TEST(IncompleteNormalErrors, AgreeWithTheReferences) {
  ExpectReference(oracle::ReadCsv("airquality.csv"), {}, "airquality");
  const oracle::Data survey = oracle::ReadCsv("survey.csv");
  ExpectReference(survey.Select({"A1", "A2", "A3", "A4", "A5", "age"}), {}, "bfi");
  // As em_errors.R takes values away.
  oracle::Data thinned = survey.Select({"A1", "A2", "A3", "A4", "A5"});
  std::vector<double> weights;
  for (std::size_t k = 0; k < 2800; ++k) {
    double* const cells = thinned.cells.data() + 5 * k;
    if (cells[0] > 2) cells[4] = std::nan("");
    if (k % 2 == 1) cells[3] = std::nan("");
    weights.push_back(1 + static_cast<double>(k % 3));
  }
  ExpectReference(thinned, weights, "thinned");
}

// Normal values of one factor, each missing with this probability.
oracle::Data Sample(int cases, int variables, double missing) {
  std::mt19937 random(7);
  std::normal_distribution<double> normal;
  std::uniform_real_distribution<double> uniform;
  oracle::Data data{std::vector<std::string>(static_cast<std::size_t>(variables)), {}};
  for (int k = 0; k < cases; ++k) {
    const double factor = normal(random);
    for (int j = 0; j < variables; ++j) {
      const double value = j + factor + normal(random);
      data.cells.push_back(uniform(random) < missing ? std::nan("") : value);
    }
  }
  return data;
}

TEST(IncompleteNormalErrors, DependNeitherOnThreadsNorOnTheOrderOfCases) {
  const oracle::Data data = Sample(3000, 9, .4);  // nearly all of 511 patterns
  const auto one = Errors(data.Block()), three = Errors(data.Block(), 3);
  ASSERT_EQ(one.status, EStatus::Ok);
  EXPECT_EQ(one.mean, three.mean);
  EXPECT_EQ(one.covariance, three.covariance);
  oracle::Data turned = data;
  std::reverse(turned.cells.begin(), turned.cells.end());  // variables as well
  const auto other = Errors(turned.Block());
  EXPECT_TRUE(one.mean.isApprox(other.mean.reverse(), 1e-9));
  EXPECT_TRUE(one.covariance.isApprox(other.covariance.reverse(), 1e-9));
  EXPECT_TRUE(one.correlation.isApprox(other.correlation.reverse(), 1e-9));
}

// x and y are never observed together, z always: what the data tell of x and z they tell without y.
TEST(IncompleteNormalErrors, LeaveOutPairsThatAreNeverObservedTogether) {
  oracle::Data data = Sample(400, 3, 0);
  data.names = {"x", "y", "z"};
  for (std::size_t k = 0; k < 400; ++k) data.cells[3 * k + (k % 3 == 0 ? 1 : 0)] = std::nan("");
  const auto all = Errors(data.Block());
  ASSERT_EQ(all.status, EStatus::Ok);
  ASSERT_EQ(all.neverTogether, (std::vector<std::pair<int, int>>{{1, 0}}));
  EXPECT_TRUE(std::isnan(all.covariance(1, 0)));
  EXPECT_TRUE(std::isnan(all.correlation(0, 1)));
  for (const int variable : {0, 1}) {
    const auto part =
        Errors(data.Select({data.names[static_cast<std::size_t>(variable)], "z"}).Block());
    const std::vector<int> both = {variable, 2};
    EXPECT_TRUE(part.mean.isApprox(all.mean(both), 1e-8));
    EXPECT_TRUE(part.sd.isApprox(all.sd(both), 1e-8));
    EXPECT_TRUE(part.covariance.isApprox(all.covariance(both, both), 1e-8));
    EXPECT_TRUE(part.correlation.isApprox(all.correlation(both, both), 1e-8));
  }
}

// G. D. Murray's sample (Journal of the Royal Statistical Society B 39, 1977, 27-28): from
// covariances of 0 EM comes to a saddle point between two maxima.
TEST(IncompleteNormalErrors, AreNotGivenWhereTheLikelihoodHasNoMaximum) {
  const double gap = std::nan("");
  const std::vector<double> cells = {1,  1,   1,  -1,  -1,  1, -1,  -1, 2,   gap, 2,   gap,
                                     -2, gap, -2, gap, gap, 2, gap, 2,  gap, -2,  gap, -2};
  const stats::CaseBlock block{cells.data(), 12, 2, 2, nullptr};
  EXPECT_EQ(Errors(block).status, EStatus::NotPositiveDefinite);
}

TEST(IncompleteNormalErrors, AreThoseOfMeansAloneForManyVariables) {
  const auto patterns = incomplete::Patterns(Sample(300, 51, 0).Block());
  const auto result = stats::EstimateIncompleteNormal(patterns, 100, 1e-12);
  const auto errors = stats::ComputeIncompleteNormalErrors(patterns, result);
  EXPECT_TRUE(errors.meansOnly);
  const Eigen::VectorXd want = result.covariance.diagonal().cwiseSqrt() / std::sqrt(300);
  EXPECT_TRUE(errors.mean.isApprox(want, 1e-10));
  EXPECT_EQ(errors.sd.size(), 0);
  const auto early = stats::EstimateIncompleteNormal(patterns, 0, 1e-12);
  EXPECT_EQ(stats::ComputeIncompleteNormalErrors(patterns, early).status, EStatus::NotConverged);
}

}  // namespace
