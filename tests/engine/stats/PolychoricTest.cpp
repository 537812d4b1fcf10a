#include <cmath>
#include <numbers>
#include <stdexcept>

#include "Oracle.h"
#include "engine/stats/Moments.h"
#include "engine/stats/Polychoric.h"

namespace {

using oracle::ExpectClose;
using oracle::Json;
using stats::CPairTables;
using stats::EDeletion;
using stats::EStatus;
using stats::FrequencyTable;
using stats::PolychoricResult;

CPairTables ItemTables(EDeletion deletion, int threads = 1) {
  const oracle::Data items = oracle::Items();
  const auto codes = oracle::Codes(items);
  CPairTables tables(std::vector<int>(10, 6), deletion, threads);
  tables.Add(oracle::CodeBlockOf(codes, items));
  return tables;
}

TEST(Polychoric, AgreesWithTheReferences) {
  const Json& want = oracle::Screening().at("polychoric");
  const CPairTables tables = ItemTables(EDeletion::Listwise);
  const stats::PolychoricMatrix matrix = stats::EstimatePolychoricMatrix(tables);
  ASSERT_TRUE(matrix.Complete());
  for (int i = 0; i < 10; ++i) {
    for (int j = 0; j < i; ++j) {
      const auto ui = static_cast<std::size_t>(i), uj = static_cast<std::size_t>(j);
      const std::string name = oracle::kItems[uj] + "~" + oracle::kItems[ui];
      const Json& pair = want.at("pairs").at(name);
      const PolychoricResult& result =
          matrix.pairs[static_cast<std::size_t>(stats::PairIndex(i, j))];
      EXPECT_LT(std::fabs(result.gradient), 1e-12);
      EXPECT_EQ(result.n, pair.at("n").get<double>());
      EXPECT_NEAR(result.r, pair.at("rho").get<double>(), 1e-10) << name;
      EXPECT_NEAR(matrix.correlation(j, i), want.at("R")[ui][uj].get<double>(), 1e-10) << name;
      ExpectClose(result.logLikelihood, pair.at("loglik"), 1e-8, name);
      // The reference uses the expected information.
      ExpectClose(result.expectedStandardError, pair.at("se_fixed_thresholds"), 1e-7, name);
      EXPECT_NEAR(result.standardError, result.expectedStandardError, .05 * result.standardError);
      const stats::TableTest test =
          stats::TestUnderlyingNormality(tables.Table(i, j), matrix.thresholds[ui].threshold,
                                         matrix.thresholds[uj].threshold, result.r);
      ASSERT_EQ(test.status, EStatus::Ok);
      EXPECT_EQ(test.df, pair.at("df").get<int>());
      ExpectClose(test.likelihoodRatio, pair.at("G2"), 1e-7, name);
      ExpectClose(test.pearson, pair.at("X2"), 1e-7, name);
      ExpectClose(test.pLikelihoodRatio, pair.at("p_G2"), 1e-7, name);
      ExpectClose(test.pPearson, pair.at("p_X2"), 1e-7, name);
      ExpectClose(test.rmsea, pair.at("rmsea"), 1e-7, name);
    }
  }
}

TEST(Polychoric, IndependenceAgreesWithTheReference) {
  const Json& want = oracle::Screening().at("independence");
  const stats::TableTest test =
      stats::TestIndependence(ItemTables(EDeletion::Listwise).Table(1, 2));
  EXPECT_EQ(test.df, want.at("df").get<int>());
  ExpectClose(test.likelihoodRatio, want.at("G2"), 1e-8, "G2");
  ExpectClose(test.pearson, want.at("X2"), 1e-8, "X2");
}

// Two by two tables with equal margins have a closed form: r = sin(pi (p11 + p22 - 1/2)).
TEST(Polychoric, FourfoldTablesHaveTheTetrachoricOfTheOrthant) {
  for (const double share : {.01, .1, .25, .4, .49}) {
    const PolychoricResult result =
        stats::EstimatePolychoric({2, 2, {share, .5 - share, .5 - share, share}});
    ASSERT_EQ(result.status, EStatus::Ok) << share;
    EXPECT_NEAR(result.r, std::sin(std::numbers::pi * (2 * share - .5)), 1e-12) << share;
  }
}

// A table made by the model gives its correlation back and fits perfectly.
TEST(Polychoric, RecoversTheModelsOwnTable) {
  const std::vector<double> rows = {-2.5, -.3, 1.1}, columns = {-1, .2, .9, 3.2};
  for (const double r : {-.999, -.93, -.6, -.1, 0., .25, .7, .95, .995}) {
    FrequencyTable table{4, 5, stats::CellProbabilities(rows, columns, r)};
    double total = 0;
    for (double& cell : table.count) total += cell *= 1e4;
    EXPECT_NEAR(total, 1e4, 1e-8);
    const PolychoricResult result = stats::EstimatePolychoric(table, rows, columns);
    ASSERT_EQ(result.status, EStatus::Ok) << r;
    EXPECT_NEAR(result.r, r, 1e-9) << r;
    const stats::TableTest test = stats::TestUnderlyingNormality(table, rows, columns, result.r);
    EXPECT_EQ(test.df, 11);
    EXPECT_NEAR(test.likelihoodRatio, 0, 1e-7);
  }
}

TEST(Polychoric, TurnsWithRowsAndColumns) {
  const FrequencyTable table{3, 3, {10, 4, 0, 5, 12, 6, 1, 8, 14}};
  const FrequencyTable transposed{3, 3, {10, 5, 1, 4, 12, 8, 0, 6, 14}};
  const FrequencyTable reversed{3, 3, {1, 8, 14, 5, 12, 6, 10, 4, 0}};
  const PolychoricResult result = stats::EstimatePolychoric(table);
  EXPECT_EQ(result.emptyCells, 1);
  EXPECT_NEAR(result.r, stats::EstimatePolychoric(transposed).r, 1e-12);
  EXPECT_NEAR(result.r, -stats::EstimatePolychoric(reversed).r, 1e-12);
  // Rows and columns without cases change nothing.
  const FrequencyTable padded{
      5, 4, {0, 0, 0, 0, 10, 4, 0, 0, 0, 0, 0, 0, 5, 12, 0, 6, 1, 8, 0, 14}};
  const PolychoricResult same = stats::EstimatePolychoric(padded);
  EXPECT_EQ(same.status, EStatus::Ok);
  EXPECT_NEAR(same.r, result.r, 1e-12);
  EXPECT_EQ(same.emptyCells, 1);
  EXPECT_EQ(stats::TestIndependence(padded).df, 4);
}

// A case far off the ridge, with a probability that is no difference of doubles.
TEST(Polychoric, BearsAnImprobableCell) {
  const std::vector<double> cuts = {-4.5, 0, 4.5};
  FrequencyTable table{4, 4, stats::CellProbabilities(cuts, cuts, .95)};
  for (double& cell : table.count) cell *= 1e7;
  table.count[3] = 1;  // lowest row, highest column
  const PolychoricResult result = stats::EstimatePolychoric(table, cuts, cuts);
  ASSERT_EQ(result.status, EStatus::Ok);
  EXPECT_GT(result.r, .9);
  EXPECT_LT(result.r, .95);
  EXPECT_LT(std::fabs(result.gradient), 1e-12);
}

TEST(Polychoric, ReportsWhatHasNoEstimate) {
  struct {
    const char* name;
    FrequencyTable table;
    EStatus status;
  } const cases[] = {
      {"all on the diagonal", {2, 2, {30, 0, 0, 20}}, EStatus::Boundary},
      {"one cell empty", {2, 2, {30, 10, 0, 20}}, EStatus::Boundary},
      {"rare and one cell empty", {2, 2, {9990, 5, 5, 0}}, EStatus::Boundary},
      {"steps along the diagonal", {3, 3, {9, 0, 0, 3, 8, 0, 0, 2, 7}}, EStatus::Boundary},
      {"one row", {2, 2, {30, 10, 0, 0}}, EStatus::OneCategory},
      {"one column", {1, 2, {30, 10}}, EStatus::OneCategory},
      {"no cases", {2, 2, {0, 0, 0, 0}}, EStatus::ZeroWeights},
      {"negative", {2, 2, {30, -1, 2, 3}}, EStatus::NotFinite},
      {"not a number", {2, 2, {30, NAN, 2, 3}}, EStatus::NotFinite},
      {"short", {2, 2, {30, 1, 2}}, EStatus::BadArgument},
      {"single case in each", {2, 2, {1, 1, 1, 1}}, EStatus::Ok},
  };
  for (const auto& c : cases) {
    const PolychoricResult result = stats::EstimatePolychoric(c.table);
    EXPECT_EQ(result.status, c.status) << c.name << ": " << stats::StatusText(result.status);
    EXPECT_TRUE(std::isfinite(result.r) && std::isfinite(result.standardError)) << c.name;
    if (result.status == EStatus::Boundary) {
      EXPECT_GT(std::fabs(result.r), .999999) << c.name;
    }
  }
  EXPECT_EQ(stats::EstimatePolychoric({2, 2, {1, 2, 3, 4}}, {0}, {0, 1}).status,
            EStatus::BadArgument);
  EXPECT_EQ(stats::EstimatePolychoric({2, 3, {1, 2, 3, 4, 5, 6}}, {0}, {1, 0}).status,
            EStatus::BadArgument);
  EXPECT_EQ(stats::TestUnderlyingNormality({2, 2, {1, 2, 3, 4}}, {0}, {0}, .3).status,
            EStatus::TooFewCases);
}

TEST(PairTables, CountWhatEachPairHas) {
  // Variable after variable: 3 variables, 6 cases.
  const std::uint8_t m = stats::kMissingCode;
  const std::vector<std::uint8_t> codes = {0, 1, 1, m, 0, 1, 2, 0, m, 1, 2, 0, 1, 1, 0, 0, 1, m};
  const std::vector<double> weights = {1, 2, 4, 8, 0, 16};
  const stats::CodeBlock block{codes.data(), 6, 3, 6, weights.data()};
  CPairTables pairwise({2, 3, 2}, EDeletion::Pairwise), listwise({2, 3, 2}, EDeletion::Listwise);
  pairwise.Add(block);
  listwise.Add(block);
  EXPECT_EQ(pairwise.Margin(0), (std::vector<double>{1, 22}));
  EXPECT_EQ(pairwise.Table(0, 1).count, (std::vector<double>{0, 0, 1, 18, 0, 0}));
  EXPECT_EQ(pairwise.Table(1, 0).count, (std::vector<double>{0, 18, 0, 0, 1, 0}));
  EXPECT_EQ(pairwise.LeftOut(), 1);
  EXPECT_EQ(listwise.Margin(0), (std::vector<double>{1, 2}));
  EXPECT_EQ(listwise.Table(1, 0).count, (std::vector<double>{0, 2, 0, 0, 1, 0}));
  EXPECT_EQ(listwise.Cases(), 2);

  const std::vector<std::uint8_t> bad = {0, 2, 0, 0, 0, 0};
  EXPECT_THROW(CPairTables({2, 2, 2}, EDeletion::Pairwise).Add({bad.data(), 2, 3, 2, nullptr}),
               std::out_of_range);
  EXPECT_THROW(pairwise.Add({codes.data(), 6, 2, 6, nullptr}), std::invalid_argument);
  EXPECT_THROW(CPairTables({2, 65}, EDeletion::Pairwise), std::invalid_argument);
}

TEST(Polychoric, ThreadsAndBlocksDoNotMatter) {
  const auto one = stats::EstimatePolychoricMatrix(ItemTables(EDeletion::Pairwise, 1), 1);
  const auto two = stats::EstimatePolychoricMatrix(ItemTables(EDeletion::Pairwise, 2), 2);
  EXPECT_TRUE((one.correlation.array() == two.correlation.array()).all());
  EXPECT_TRUE(one.Complete());
}

TEST(Polychoric, AMatrixNamesThePairsWithoutEstimate) {
  const std::vector<std::uint8_t> codes = {0, 1, 0, 1, 1, 0, 0, 1, 0, 1, 1, 1, 0, 0, 0, 0, 0, 0};
  CPairTables tables({2, 2, 2}, EDeletion::Listwise);
  tables.Add({codes.data(), 6, 3, 6, nullptr});
  const stats::PolychoricMatrix matrix = stats::EstimatePolychoricMatrix(tables);
  EXPECT_FALSE(matrix.Complete());
  EXPECT_EQ(matrix.pairs[1].status, EStatus::OneCategory);
  EXPECT_EQ(matrix.correlation(2, 0), 0);
}

}  // namespace
