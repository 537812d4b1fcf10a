#include <cmath>
#include <random>

#include "IncompleteSamples.h"
#include "Oracle.h"

namespace {

using Eigen::Index;
using incomplete::Patterns;
using oracle::ExpectClose;
using oracle::Json;
using stats::EStatus;

void ExpectReference(const oracle::Data& data, const char* key) {
  const auto patterns = Patterns(data.Block());
  const auto result = stats::EstimateIncompleteNormal(patterns, 1000, 1e-14);
  ASSERT_EQ(result.status, EStatus::Ok);
  const Json& want = oracle::Load("procedures.json").at("em").at(key);
  EXPECT_EQ(patterns.Complete(), want.at("n_complete").get<std::int64_t>());
  EXPECT_EQ(patterns.Patterns().size(), want.at("patterns").get<std::size_t>());
  for (std::size_t i = 0; i < data.names.size(); ++i) {
    const auto row = static_cast<Index>(i);
    ExpectClose(result.mean(row), want.at("mean").at(data.names[i]), 1e-8, data.names[i]);
    for (std::size_t j = 0; j < data.names.size(); ++j) {
      const auto column = static_cast<Index>(j);
      const double scale =
          std::sqrt(result.covariance(row, row) * result.covariance(column, column));
      EXPECT_NEAR(result.covariance(row, column), want.at("cov_divisor_n")[i][j].get<double>(),
                  1e-8 * scale);
    }
  }
  ExpectClose(result.logLikelihoods.back(), want.at("loglik"), 1e-11, "log-likelihood");
  for (std::size_t i = 1; i < result.logLikelihoods.size(); ++i)
    EXPECT_GE(result.logLikelihoods[i], result.logLikelihoods[i - 1] - 1e-9);
}

TEST(IncompleteNormal, AgreesWithTheReferences) {
  ExpectReference(oracle::ReadCsv("airquality.csv"), "airquality");
  ExpectReference(oracle::ReadCsv("survey.csv").Select({"A1", "A2", "A3", "A4", "A5", "age"}),
                  "bfi");
}

TEST(IncompleteNormal, FillsInWhatRegressionPredicts) {
  // y is missing in some cases, x never: the regression of y on x of the others predicts it.
  std::mt19937 random(12);
  std::normal_distribution<double> normal;
  oracle::Data data{{"x", "y"}, {}};
  for (int k = 0; k < 60; ++k) {
    const double x = normal(random);
    data.cells.push_back(x);
    data.cells.push_back(k % 4 == 0 ? std::nan("") : 1 + x + normal(random));
  }
  const auto patterns = Patterns(data.Block());
  const auto result = stats::EstimateIncompleteNormal(patterns, 1000, 1e-14);
  ASSERT_EQ(result.status, EStatus::Ok);
  double n = 0, sx = 0, sy = 0, sxx = 0, sxy = 0;
  for (int k = 0; k < 60; ++k) {
    const double x = data.cells[static_cast<std::size_t>(2 * k)];
    const double y = data.cells[static_cast<std::size_t>(2 * k + 1)];
    if (std::isnan(y)) continue;
    n += 1, sx += x, sy += y, sxx += x * x, sxy += x * y;
  }
  const double slope = (sxy - sx * sy / n) / (sxx - sx * sx / n);
  double filled[2];
  const double cells[2] = {2, std::nan("")};
  stats::CConditionalMeans(patterns, result).Fill(cells, filled);
  EXPECT_NEAR(filled[1], (sy - slope * sx) / n + 2 * slope, 1e-9);
  EXPECT_EQ(filled[0], 2);
}

TEST(IncompleteNormal, SaysWhatIsWrong) {
  const double gap = std::nan("");
  struct {
    std::vector<double> cells;
    int iterations;
    EStatus status;
  } const cases[] = {{{1, 2, 2, 4, 3, 6, 4, 8, 5, 10}, 100, EStatus::NotPositiveDefinite},
                     {{1, 2, 2, 5}, 100, EStatus::TooFewCases},
                     {{1, 2, 2, 1, 3, gap, 4, 7, 5, 4, gap, 1}, 2, EStatus::NotConverged}};
  for (const auto& c : cases) {
    const stats::CaseBlock block{c.cells.data(), static_cast<std::int64_t>(c.cells.size() / 2), 2,
                                 2, nullptr};
    EXPECT_EQ(stats::EstimateIncompleteNormal(Patterns(block), c.iterations, 1e-10).status,
              c.status);
  }
}

}  // namespace
