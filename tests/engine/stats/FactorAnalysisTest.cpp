#include <cmath>
#include <random>

#include "Oracle.h"
#include "engine/stats/Components.h"
#include "engine/stats/FactorAnalysis.h"
#include "engine/stats/Moments.h"
#include "engine/stats/Polychoric.h"
#include "engine/stats/Rotation.h"

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using oracle::ExpectClose;
using oracle::Json;
using stats::EFactorMethod;
using stats::EStatus;

const Json& Reference(const char* key) {
  return oracle::Load("procedures.json").at(key);
}

void ExpectMatrix(const MatrixXd& got, const Json& want, double tolerance, const char* what) {
  ASSERT_EQ(static_cast<std::size_t>(got.rows()), want.size()) << what;
  for (Index i = 0; i < got.rows(); ++i) {
    for (Index j = 0; j < got.cols(); ++j) {
      EXPECT_NEAR(got(i, j),
                  want[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)].get<double>(),
                  tolerance)
          << what << ' ' << i << ' ' << j;
    }
  }
}

oracle::Data CompleteItems() {
  const oracle::Data items = oracle::Items();
  oracle::Data complete{items.names, {}};
  for (std::int64_t k = 0; k < items.Cases(); ++k) {
    const double* cells = items.cells.data() + 10 * k;
    if (std::none_of(cells, cells + 10, [](double x) { return std::isnan(x); }))
      complete.cells.insert(complete.cells.end(), cells, cells + 10);
  }
  return complete;
}

MatrixXd Correlations(const oracle::Data& data) {
  stats::CMoments moments(data.Variables(), stats::EDeletion::Listwise);
  moments.Add(data.Block());
  return ComputeMoments(moments, stats::EMoments::Correlation).matrix;
}

MatrixXd Polychorics(const oracle::Data& data) {
  const auto codes = oracle::Codes(data);
  stats::CPairTables tables(std::vector<int>(10, 6), stats::EDeletion::Listwise);
  tables.Add(oracle::CodeBlockOf(codes, data));
  return stats::EstimatePolychoricMatrix(tables).correlation;
}

void ExpectUniquenesses(const stats::FactorResult& result, const Json& want) {
  for (std::size_t i = 0; i < oracle::kItems.size(); ++i) {
    ExpectClose(result.uniqueness(static_cast<Index>(i)),
                want.at("uniquenesses").at(oracle::kItems[i]), 1e-7, oracle::kItems[i]);
  }
}

// Scores of the first five complete cases; the reference standardises with the divisor n - 1.
MatrixXd FirstScores(const oracle::Data& data, const MatrixXd& weights) {
  const Index p = data.Variables();
  MatrixXd z = Eigen::Map<const Eigen::Matrix<double, -1, -1, Eigen::RowMajor>>(data.cells.data(),
                                                                                data.Cases(), p);
  z.rowwise() -= z.colwise().mean().eval();
  for (Index j = 0; j < p; ++j)
    z.col(j) /= std::sqrt(z.col(j).squaredNorm() / static_cast<double>(z.rows() - 1));
  return z.topRows(5) * weights;
}

TEST(FactorAnalysis, ByMaximumLikelihoodAgreesWithTheReference) {
  const oracle::Data data = CompleteItems();
  const MatrixXd r = Correlations(data);
  const auto result = stats::EstimateFactors(r, 2632, 2, EFactorMethod::MaximumLikelihood);
  ASSERT_EQ(result.status, EStatus::Ok);
  const Json& want = Reference("efa_ml");
  ExpectUniquenesses(result, want);
  ExpectClose(result.minimum, want.at("discrepancy"), 1e-10, "minimum");
  ExpectClose(result.fit.discrepancy, want.at("discrepancy"), 1e-8, "discrepancy");
  ExpectClose(result.fit.chiSquare, want.at("chisq_n1"), 1e-8, "chi-square");
  ExpectClose(result.fit.bartlett, want.at("chisq_bartlett"), 1e-8, "Bartlett");
  ExpectClose(result.fit.df, want.at("df"), 0, "df");
  ExpectMatrix(result.loadings, want.at("loadings_canonical"), 1e-7, "loadings");
  ExpectMatrix(stats::RotateVarimax(result.loadings).loadings, want.at("varimax_kaiser"), 1e-7,
               "varimax");
  ExpectMatrix(FirstScores(data, stats::RegressionScoreWeights(r, result.loadings)),
               want.at("scores_first5_canonical").at("regression"), 1e-6, "scores");
  EXPECT_LT(result.iterations, 15);
}

TEST(FactorAnalysis, ByMinresAgreesWithTheReference) {
  const oracle::Data data = CompleteItems();
  const MatrixXd r = Correlations(data);
  const auto result = stats::EstimateFactors(r, 2632, 2, EFactorMethod::Minres);
  ASSERT_EQ(result.status, EStatus::Ok);
  const Json& want = Reference("efa_minres");
  ExpectUniquenesses(result, want);
  ExpectClose(result.minimum, want.at("sum_sq_offdiag_residuals_lower"), 1e-9, "residuals");
  ExpectClose(result.fit.rootMeanSquareResidual, want.at("rmsr"), 1e-9, "rmsr");
  ExpectClose(result.fit.bartlett, want.at("chisq_ml_formula_bartlett"), 1e-7, "Bartlett");
  ExpectMatrix(result.loadings, want.at("loadings_principal_axes"), 1e-7, "loadings");
  ExpectMatrix(stats::RotateVarimax(result.loadings).loadings, want.at("varimax_kaiser"), 1e-7,
               "varimax");
  ExpectMatrix(FirstScores(data, stats::RegressionScoreWeights(r, result.loadings)),
               want.at("scores_first5_principal_axes").at("regression"), 1e-6, "scores");
}

TEST(FactorAnalysis, OfPolychoricCorrelationsAgreesWithTheReference) {
  const MatrixXd r = Polychorics(CompleteItems());
  for (const bool minres : {false, true}) {
    const auto result = stats::EstimateFactors(
        r, 2632, 2, minres ? EFactorMethod::Minres : EFactorMethod::MaximumLikelihood);
    ASSERT_EQ(result.status, EStatus::Ok);
    const Json& want = Reference(minres ? "efa_minres_polychoric" : "efa_ml_polychoric");
    ExpectUniquenesses(result, want);
    ExpectMatrix(stats::RotateVarimax(result.loadings).loadings, want.at("varimax_kaiser"), 1e-7,
                 "varimax");
  }
}

// Exact structure: two factors, found again.
TEST(FactorAnalysis, FindsWhatTheMatrixIsMadeOf) {
  MatrixXd l(6, 2);
  l << .8, 0, .7, .2, .6, .1, .1, .5, 0, .9, .2, .6;
  MatrixXd r = l * l.transpose();
  r.diagonal().setOnes();
  for (const auto method : {EFactorMethod::MaximumLikelihood, EFactorMethod::Minres}) {
    const auto result = stats::EstimateFactors(r, 500, 2, method);
    ASSERT_EQ(result.status, EStatus::Ok);
    EXPECT_LT(
        (result.loadings * result.loadings.transpose() - l * l.transpose()).cwiseAbs().maxCoeff(),
        1e-6);
    EXPECT_NEAR(result.fit.chiSquare, 0, 1e-6);
    const auto varimax = stats::RotateVarimax(result.loadings);
    EXPECT_LT(
        (varimax.transformation.transpose() * varimax.transformation - MatrixXd::Identity(2, 2))
            .cwiseAbs()
            .maxCoeff(),
        1e-13);
    // An oblique rotation keeps what the factors explain.
    const auto promax = stats::RotatePromax(varimax.loadings);
    EXPECT_LT((promax.loadings * promax.correlation * promax.loadings.transpose() -
               varimax.loadings * varimax.loadings.transpose())
                  .cwiseAbs()
                  .maxCoeff(),
              1e-12);
    EXPECT_NEAR(promax.correlation(0, 0), 1, 1e-13);
  }
}

TEST(FactorAnalysis, ReportsHeywoodCasesAndImpossibleOnes) {
  MatrixXd r(4, 4);
  r << 1, .9, .8, .3, .9, 1, .5, .2, .8, .5, 1, .1, .3, .2, .1, 1;
  const auto ml = EFactorMethod::MaximumLikelihood;
  const auto heywood = stats::EstimateFactors(r, 100, 1, ml);
  ASSERT_EQ(heywood.status, EStatus::Ok);
  EXPECT_EQ(heywood.heywood.sum(), 1);
  EXPECT_EQ(heywood.heywood(0), 1);
  EXPECT_EQ(stats::EstimateFactors(r, 100, 2, ml).status, EStatus::TooFewCases);
  EXPECT_EQ(stats::EstimateFactors(r, 100, 4, ml).status, EStatus::BadArgument);
  r(0, 1) = r(1, 0) = 1;
  EXPECT_EQ(stats::EstimateFactors(r, 100, 1, ml).status, EStatus::NotPositiveDefinite);
  // MINRES can do with such a matrix, but has no likelihood to test it by.
  const auto minres = stats::EstimateFactors(r, 100, 1, EFactorMethod::Minres);
  ASSERT_EQ(minres.status, EStatus::Ok);
  EXPECT_FALSE(minres.fit.likelihood);
  EXPECT_GT(minres.fit.rootMeanSquareResidual, 0);
}

// The eigenvalues that maximum likelihood goes by are weighted: the largest need not have the
// largest squares.
TEST(FactorAnalysis, PutsTheColumnsInTheOrderOfTheirSquares) {
  const oracle::Data data =
      oracle::ReadCsv("mtcars.csv").Select({"mpg", "wt", "hp", "cyl", "am", "qsec"});
  const auto result =
      stats::EstimateFactors(Correlations(data), 32, 2, EFactorMethod::MaximumLikelihood);
  ASSERT_EQ(result.status, EStatus::Ok);
  // R 4.2.2, factanal without rotation
  EXPECT_NEAR(result.loadings.col(0).squaredNorm(), 2.970, 5e-4);
  EXPECT_NEAR(result.loadings.col(1).squaredNorm(), 2.242, 5e-4);
}

TEST(Components, AgreeWithTheReference) {
  const oracle::Data data = oracle::ReadCsv("attitude.csv");
  const Json& want = Reference("pca");
  const auto result = stats::EstimateComponents(Correlations(data));
  ASSERT_EQ(result.status, EStatus::Ok);
  for (Index j = 0; j < 7; ++j) {
    ExpectClose(result.eigenvalues(j), want.at("eigenvalues_R")[static_cast<std::size_t>(j)], 1e-11,
                "eigenvalue");
  }
  ExpectMatrix(result.vectors, want.at("vectors_R"), 1e-11, "vectors");
  ExpectMatrix(result.loadings, want.at("component_loadings"), 1e-11, "loadings");
  ExpectMatrix(FirstScores(data, result.vectors), want.at("scores_first5_standardised_data"), 1e-11,
               "scores");
}

// The same eigenvalues from data drawn case by case.
TEST(Components, OfChanceAreThoseOfRandomData) {
  constexpr int kVariables = 6, kCases = 40, kSamples = 400;
  const auto result = stats::AnalyseParallel(kVariables, kCases, kSamples, 5, 2);
  EXPECT_TRUE((result.mean.array() ==
               stats::AnalyseParallel(kVariables, kCases, kSamples, 5, 1).mean.array())
                  .all());
  EXPECT_NEAR(result.mean.sum(), kVariables, 1e-10);
  std::mt19937 random(9);
  std::normal_distribution<double> normal;
  double first = 0;
  for (int s = 0; s < kSamples; ++s) {
    oracle::Data data{std::vector<std::string>(kVariables), {}};
    for (int i = 0; i < kVariables * kCases; ++i) data.cells.push_back(normal(random));
    first += stats::EstimateComponents(Correlations(data)).eigenvalues(0) / kSamples;
  }
  EXPECT_NEAR(result.mean(0), first, 0.05);  // the Monte Carlo error of either is about .01
  EXPECT_GT(result.percentile95(0), result.mean(0) + 0.1);
}

}  // namespace
