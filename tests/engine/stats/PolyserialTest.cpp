#include <random>

#include "Oracle.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/Polyserial.h"

namespace {

using oracle::ExpectClose;
using oracle::Json;
using stats::EStatus;
using stats::EstimatePolyserial;
using stats::kMissingCode;
using stats::PolyserialResult;

void ExpectPair(const char* item, const Json& want) {
  oracle::Data data = oracle::ReadCsv("survey.csv").Select({"A1", "C1", "age", item});
  std::vector<double> age;
  std::vector<std::uint8_t> codes;
  for (std::int64_t k = 0; k < data.Cases(); ++k) {
    const double* cells = data.cells.data() + 4 * k;
    const bool complete = cells[0] == cells[0] && cells[1] == cells[1] && cells[2] == cells[2];
    age.push_back(cells[2]);
    codes.push_back(complete ? static_cast<std::uint8_t>(cells[3] - 1) : kMissingCode);
  }
  const PolyserialResult result = EstimatePolyserial(age.data(), codes.data(), data.Cases(), 6);
  ASSERT_EQ(result.status, EStatus::Ok);
  EXPECT_EQ(result.n, want.at("n").get<double>());
  ExpectClose(result.r, want.at("rho"), 1e-7, item);
  ExpectClose(result.standardError, want.at("se_fixed_nuisance"), 1e-6, item);
  ExpectClose(result.pointPolyserial, want.at("point_polyserial"), 1e-8, item);
  for (std::size_t a = 0; a < 5; ++a)
    ExpectClose(result.thresholds[a], want.at("thresholds").at(a), 1e-8, item);
  EXPECT_LT(std::fabs(result.gradient), 1e-12);
}

TEST(Polyserial, AgreesWithTheReferences) {
  const Json& want = oracle::Screening().at("polyserial");
  ExpectPair("A1", want.at("a"));
  ExpectPair("C1", want.at("b"));
}

// A sample whose shares are exact: every category given x has its model probability as weight.
TEST(Polyserial, RecoversTheModelsOwnShares) {
  for (const double r : {-.9, -.4, 0., .6, .97}) {
    std::vector<double> values, weights;
    std::vector<std::uint8_t> codes;
    const double cuts[] = {-HUGE_VAL, -.8, .5, HUGE_VAL};
    constexpr int kPoints = 4000;
    for (int q = 0; q < kPoints; ++q) {
      const double x = -8 + 16 * (q + .5) / kPoints;
      for (int c = 0; c < 3; ++c) {
        const double spread = std::sqrt(1 - r * r);
        values.push_back(50 + 10 * x);
        weights.push_back(
            1e6 * stats::NormalDensity(x) * 16 / kPoints *
            stats::NormalInterval((cuts[c] - r * x) / spread, (cuts[c + 1] - r * x) / spread));
        codes.push_back(static_cast<std::uint8_t>(c));
      }
    }
    const PolyserialResult result = EstimatePolyserial(
        values.data(), codes.data(), static_cast<std::int64_t>(values.size()), 3, weights.data());
    ASSERT_EQ(result.status, EStatus::Ok) << r;
    EXPECT_NEAR(result.r, r, 1e-9);
    EXPECT_NEAR(result.mean, 50, 1e-9);
    EXPECT_NEAR(result.sd, 10, 1e-8);
  }
}

TEST(Polyserial, ReportsWhatHasNoEstimate) {
  struct {
    const char* name;
    std::vector<double> values;
    std::vector<std::uint8_t> codes;
    std::vector<double> weights;
    EStatus status;
  } const cases[] = {
      {"none", {}, {}, {}, EStatus::NoCases},
      {"nothing together", {1, NAN}, {kMissingCode, 1}, {}, EStatus::NoCases},
      {"no weight", {1, 2}, {0, 1}, {0, 0}, EStatus::ZeroWeights},
      {"constant", {2, 2, 2}, {0, 1, 1}, {}, EStatus::Constant},
      {"one category", {1, 2, 3}, {1, 1, 1}, {}, EStatus::OneCategory},
      {"code out of range", {1, 2, 3}, {0, 1, 2}, {}, EStatus::BadArgument},
      {"infinite", {1, HUGE_VAL, 3}, {0, 1, 1}, {}, EStatus::NotFinite},
      {"single", {1}, {0}, {}, EStatus::TooFewCases},
      {"fine", {1, 2, 3, 4, 5, 6}, {0, 1, 0, 1, 1, 1}, {}, EStatus::Ok},
  };
  for (const auto& c : cases) {
    const PolyserialResult result = EstimatePolyserial(
        c.values.data(), c.codes.data(), static_cast<std::int64_t>(c.values.size()), 2,
        c.weights.empty() ? nullptr : c.weights.data());
    EXPECT_EQ(result.status, c.status) << c.name << ": " << stats::StatusText(result.status);
    EXPECT_TRUE(std::isfinite(result.r) && std::isfinite(result.standardError)) << c.name;
  }
}

// Cut from the continuous variable itself, at the place where the marginal threshold lies.
TEST(Polyserial, APerfectCutLiesAtTheBoundary) {
  std::vector<double> values;
  std::vector<std::uint8_t> codes;
  for (int k = 0; k < 200; ++k) {
    values.push_back(stats::NormalQuantile((k + .5) / 200));
    codes.push_back(k < 100 ? 0 : 1);
  }
  const PolyserialResult result = EstimatePolyserial(values.data(), codes.data(), 200, 2);
  EXPECT_EQ(result.status, EStatus::Boundary) << stats::StatusText(result.status);
  EXPECT_GT(result.r, .999);
}

}  // namespace
