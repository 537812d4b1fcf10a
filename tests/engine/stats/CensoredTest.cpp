#include <cmath>

#include "Oracle.h"
#include "engine/stats/Censored.h"

namespace {

using oracle::ExpectClose;
using oracle::Json;
using stats::CensoredResult;
using stats::CensoredSums;
using stats::ECensoring;
using stats::EStatus;

CensoredResult Estimate(const std::string& file, const std::string& name, ECensoring censoring,
                        double offset = 0, double scale = 1) {
  std::vector<double> column = oracle::ReadCsv(file).Select({name}).cells;
  for (double& x : column) x = offset + scale * x;
  const auto cases = static_cast<std::int64_t>(column.size());
  return stats::EstimateCensored(
      stats::SumsAtRange(stats::DescribeColumn(column.data(), cases), censoring));
}

// The likelihood is flat to 1e-15 over 1e-8 of a standard deviation, so that a reference found by
// the likelihood alone is good to about that.
TEST(Censored, AgreesWithTheReferences) {
  const struct {
    const char *key, *file, *name;
    ECensoring censoring;
  } cases[] = {{"A1_below", "survey.csv", "A1", ECensoring::Below},
               {"A1_both", "survey.csv", "A1", ECensoring::Both},
               {"A4_above", "survey.csv", "A4", ECensoring::Above},
               {"C5_both", "survey.csv", "C5", ECensoring::Both},
               {"learning_above", "attitude.csv", "learning", ECensoring::Above},
               {"rating_both", "attitude.csv", "rating", ECensoring::Both}};
  for (const auto& c : cases) {
    const Json& want = oracle::Load("censored.json").at(c.key);
    const CensoredResult result = Estimate(c.file, c.name, c.censoring);
    ASSERT_EQ(result.status, EStatus::Ok) << c.key;
    EXPECT_EQ(result.n, want.at("n").get<double>());
    EXPECT_EQ(result.below, want.at("below").get<double>());
    EXPECT_EQ(result.above, want.at("above").get<double>());
    ExpectClose(result.mean, want.at("mean"), 1e-7, c.key);
    ExpectClose(result.sd, want.at("sd"), 1e-7, c.key);
    ExpectClose(result.seMean, want.at("se_mean"), 1e-6, c.key);
    ExpectClose(result.seSd, want.at("se_sd"), 1e-6, c.key);
    ExpectClose(result.logLikelihood, want.at("loglik"), 1e-10, c.key);
  }
}

TEST(Censored, FollowsOffsetAndScale) {
  const CensoredResult plain = Estimate("survey.csv", "A1", ECensoring::Both);
  const CensoredResult moved = Estimate("survey.csv", "A1", ECensoring::Both, 1e6, 1e-3);
  EXPECT_NEAR(moved.mean - 1e6, plain.mean * 1e-3, 1e-9);
  EXPECT_NEAR(moved.sd, plain.sd * 1e-3, 1e-9 * plain.sd);
  EXPECT_NEAR(moved.seSd, plain.seSd * 1e-3, 1e-9 * plain.seSd);
}

TEST(Censored, WithoutCensoredCasesIsTheSampleItself) {
  const CensoredResult result = stats::EstimateCensored({0, 0, 0, 0, 40, 7, 9});
  ASSERT_EQ(result.status, EStatus::Ok);
  EXPECT_NEAR(result.mean, 7, 1e-12);
  EXPECT_NEAR(result.sd, 3, 1e-12);
  EXPECT_NEAR(result.seMean, 3 / std::sqrt(40.0), 1e-12);
  EXPECT_NEAR(result.seSd, 3 / std::sqrt(80.0), 1e-12);
}

TEST(Censored, SymmetricTailsLeaveTheMean) {
  const CensoredResult result = stats::EstimateCensored({30, -1, 30, 1, 40, 0, .2});
  ASSERT_EQ(result.status, EStatus::Ok);
  EXPECT_NEAR(result.mean, 0, 1e-12);
  EXPECT_GT(result.sd, 1);
}

TEST(Censored, ReportsWhatHasNoMaximum) {
  const struct {
    const char* name;
    CensoredSums sums;
    EStatus status;
  } cases[] = {
      {"nothing", {}, EStatus::ZeroWeights},
      {"all at the limits", {5, 1, 7, 2, 0, 0, 0}, EStatus::TooFewCases},
      {"one case", {0, 0, 0, 0, 1, 3, 0}, EStatus::TooFewCases},
      {"constant", {0, 0, 0, 0, 9, 3, 0}, EStatus::Constant},
      {"limit inside", {5, 4, 0, 0, 9, 3, 1}, EStatus::BadArgument},
      {"not a number", {5, NAN, 0, 0, 9, 3, 1}, EStatus::NotFinite},
      {"one value above the limit", {5, 1, 0, 0, 9, 3, 0}, EStatus::Ok},
      {"nearly all at the limit", {1e6, 0, 0, 0, 2, 3, 1}, EStatus::Ok},
      {"nearly none at the limit", {1, -9, 0, 0, 1e6, 3, 1}, EStatus::Ok},
  };
  for (const auto& c : cases) {
    const CensoredResult result = stats::EstimateCensored(c.sums);
    EXPECT_EQ(result.status, c.status) << c.name << ": " << stats::StatusText(result.status);
    EXPECT_TRUE(std::isfinite(result.mean) && std::isfinite(result.seMean)) << c.name;
  }
}

}  // namespace
