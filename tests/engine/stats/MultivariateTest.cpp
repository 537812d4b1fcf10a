#include <cmath>
#include <random>
#include <stdexcept>

#include "Oracle.h"
#include "engine/stats/Multivariate.h"
#include "engine/stats/Univariate.h"

namespace {

using oracle::ExpectClose;
using oracle::Json;
using stats::CMardia;
using stats::CMoments;
using stats::EDeletion;
using stats::EStatus;
using stats::MardiaResult;

MardiaResult Mardia(const stats::CaseBlock& block, int threads = 1) {
  CMoments moments(block.variables, EDeletion::Listwise, threads);
  moments.Add(block);
  CMardia mardia(moments, threads);
  mardia.Add(block);
  return mardia.Result();
}

void ExpectAll(const oracle::Data& data, const Json& want) {
  const MardiaResult result = Mardia(data.Block());
  ASSERT_EQ(result.status, EStatus::Ok);
  const struct {
    const char* key;
    double value;
  } values[] = {{"n", result.n},
                {"b1p", result.skewness},
                {"chisq_skew", result.chiSquareSkewness},
                {"df_skew", result.dfSkewness},
                {"chisq_skew_smallsample", result.smallSample},
                {"b2p", result.kurtosis},
                {"expected_b2p", result.expectedKurtosis},
                {"z_kurt", result.zKurtosis},
                {"relative_kurtosis", result.relativeKurtosis}};
  for (const auto& v : values) ExpectClose(v.value, want.at(v.key), 1e-8, v.key);
  // The reference's probability is 0 where it underflows in a subtraction from 1.
  EXPECT_NEAR(result.pSkewness, want.at("p_skew").get<double>(), 1e-10);
}

TEST(Mardia, AgreesWithTheReferences) {
  ExpectAll(oracle::Items(), oracle::Screening().at("mardia").at("items"));
  ExpectAll(oracle::ReadCsv("attitude.csv"), oracle::Screening().at("mardia").at("cont"));
}

// One variable: the squared skewness and the kurtosis of univariate statistics.
TEST(Mardia, OfOneVariableIsUnivariate) {
  const std::vector<double> values = {3, 1, 4, 1, 5, 9, 2, 6, 5, 3, 5};
  const MardiaResult result = Mardia({values.data(), 11, 1, 1, nullptr});
  const stats::UnivariateResult one = stats::DescribeColumn(values.data(), 11);
  EXPECT_NEAR(result.skewness, one.g1 * one.g1, 1e-12);
  EXPECT_NEAR(result.kurtosis, one.g2 + 3, 1e-12);
}

// Units and mixtures of the variables have no influence; nor have threads; weights count cases.
TEST(Mardia, IsAffinelyInvariant) {
  std::mt19937 random(8);
  std::exponential_distribution<double> exponential;
  std::vector<double> plain, mixed, repeated, weights;
  for (int k = 0; k < 20'000; ++k) {
    const double x = exponential(random), y = exponential(random), z = exponential(random);
    weights.push_back(k % 3 + 1);
    plain.insert(plain.end(), {x, y, z});
    mixed.insert(mixed.end(), {1e4 + 1e-3 * x, x - 2 * y, 1e3 * (z + y)});
    for (int w = 0; w < k % 3 + 1; ++w) repeated.insert(repeated.end(), {x, y, z});
  }
  const MardiaResult a = Mardia({plain.data(), 20'000, 3, 3, weights.data()});
  const MardiaResult b = Mardia({mixed.data(), 20'000, 3, 3, weights.data()}, 2);
  const MardiaResult c =
      Mardia({repeated.data(), static_cast<std::int64_t>(repeated.size() / 3), 3, 3, nullptr});
  EXPECT_NEAR(b.skewness, a.skewness, 1e-8 * a.skewness);
  EXPECT_NEAR(b.kurtosis, a.kurtosis, 1e-8 * a.kurtosis);
  EXPECT_NEAR(c.skewness, a.skewness, 1e-10 * a.skewness);
  EXPECT_EQ(c.n, a.n);
  const MardiaResult two = Mardia({plain.data(), 20'000, 3, 3, weights.data()}, 2);
  EXPECT_EQ(a.skewness, two.skewness);
  EXPECT_EQ(a.kurtosis, two.kurtosis);
  EXPECT_GT(a.chiSquareJoint, a.zKurtosis * a.zKurtosis);
}

TEST(Mardia, ReportsWhatCannotBeComputed) {
  const std::vector<double> few = {1, 2, 5, 3, 4, 4}, same = {1, 2, 3, 6, 5, 10, 2, 4},
                            constant = {1, 7, 2, 7, 3, 7, 4, 7};
  EXPECT_EQ(Mardia({few.data(), 2, 3, 3, nullptr}).status, EStatus::TooFewCases);
  EXPECT_EQ(Mardia({same.data(), 4, 2, 2, nullptr}).status, EStatus::NotPositiveDefinite);
  EXPECT_EQ(Mardia({constant.data(), 4, 2, 2, nullptr}).status, EStatus::NotPositiveDefinite);
  EXPECT_EQ(Mardia({nullptr, 0, 2, 2, nullptr}).status, EStatus::NoCases);
  EXPECT_THROW(CMardia(CMoments(2, EDeletion::Pairwise)), std::invalid_argument);
}

}  // namespace
