#include <cmath>
#include <random>
#include <stdexcept>

#include "Oracle.h"
#include "engine/stats/AsymptoticCovariance.h"

namespace {

using Eigen::MatrixXd;
using stats::AsymptoticCovarianceResult;
using stats::CMoments;
using stats::CPairTables;
using stats::EDeletion;
using stats::EMoments;
using stats::EStatus;

AsymptoticCovarianceResult Polychoric(const stats::CodeBlock& block, std::vector<int> categories,
                                      EDeletion deletion, int threads = 1) {
  CPairTables tables(std::move(categories), deletion, threads);
  tables.Add(block);
  const stats::PolychoricMatrix matrix = stats::EstimatePolychoricMatrix(tables, threads);
  stats::CPolychoricAcov acov(tables, matrix, deletion, threads);
  acov.Add(block);
  return acov.Result();
}

// `acov_of_estimates` is the delta method with observed second derivatives, which is what we
// compute.
TEST(PolychoricAcov, AgreesWithTheReference) {
  const oracle::Data items = oracle::Items();
  // The reference takes the cases that are complete in all ten items, and five of the items.
  oracle::Data complete{items.names, {}};
  for (std::int64_t k = 0; k < items.Cases(); ++k) {
    const double* cells = items.cells.data() + 10 * k;
    if (std::none_of(cells, cells + 10, [](double x) { return std::isnan(x); }))
      complete.cells.insert(complete.cells.end(), cells, cells + 10);
  }
  const oracle::Data five = complete.Select({"A1", "A2", "A3", "A4", "A5"});
  const auto codes = oracle::Codes(five);
  const auto result =
      Polychoric(oracle::CodeBlockOf(codes, five), std::vector<int>(5, 6), EDeletion::Listwise);
  ASSERT_EQ(result.status, EStatus::Ok);
  EXPECT_EQ(result.n, 2632);
  const oracle::Json& want = oracle::Screening().at("acm").at("acov_of_estimates");
  ASSERT_EQ(result.matrix.rows(), static_cast<Eigen::Index>(want.size()));
  for (int i = 0; i < 10; ++i) {
    for (int j = 0; j < 10; ++j) {
      // Small covariances of large variances are compared on the variances' scale.
      const double scale = std::sqrt(result.matrix(i, i) * result.matrix(j, j));
      EXPECT_NEAR(result.matrix(i, j),
                  want[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)].get<double>(),
                  1e-7 * scale);
    }
  }
}

// Five ordinal variables with 2 to 4 categories, gaps and weights.
struct Sample {
  std::vector<std::uint8_t> codes;
  std::vector<double> weights;
  std::vector<int> categories = {2, 3, 4, 3};
  std::int64_t cases = 0;
  stats::CodeBlock Block() const { return {codes.data(), cases, 4, cases, weights.data()}; }
};

Sample MakeSample(std::int64_t cases) {
  Sample sample;
  sample.cases = cases;
  sample.codes.resize(static_cast<std::size_t>(4 * cases));
  std::mt19937 random(21);
  std::normal_distribution<double> normal;
  for (std::int64_t k = 0; k < cases; ++k) {
    const double common = normal(random);
    for (int j = 0; j < 4; ++j) {
      const double x = common + normal(random);
      const int category = std::clamp(static_cast<int>(std::floor(x + 2)), 0,
                                      sample.categories[static_cast<std::size_t>(j)] - 1);
      sample.codes[static_cast<std::size_t>(j * cases + k)] =
          random() % 9 == 0 ? stats::kMissingCode : static_cast<std::uint8_t>(category);
    }
    sample.weights.push_back(1 + static_cast<double>(random() % 3));
  }
  return sample;
}

Eigen::VectorXd Estimates(const Sample& sample, EDeletion deletion) {
  CPairTables tables(sample.categories, deletion);
  tables.Add(sample.Block());
  const stats::PolychoricMatrix matrix = stats::EstimatePolychoricMatrix(tables);
  Eigen::VectorXd r(6);
  for (int at = 0; at < 6; ++at) r[at] = matrix.pairs[static_cast<std::size_t>(at)].r;
  return r;
}

// The influence of a case is the derivative of the estimates, thresholds and all, by its weight;
// found here by estimating anew with a weight a little higher and a little lower.
TEST(PolychoricAcov, IsTheSumOfSquaredDerivativesByTheWeights) {
  for (const EDeletion deletion : {EDeletion::Listwise, EDeletion::Pairwise}) {
    Sample sample = MakeSample(120);
    const auto result = Polychoric(sample.Block(), sample.categories, deletion);
    ASSERT_EQ(result.status, EStatus::Ok);
    MatrixXd want = MatrixXd::Zero(6, 6);
    for (double& weight : sample.weights) {
      constexpr double kStep = 1e-3;
      const double kept = weight;
      weight = kept + kStep;
      const Eigen::VectorXd up = Estimates(sample, deletion);
      weight = kept - kStep;
      const Eigen::VectorXd slope = (up - Estimates(sample, deletion)) / (2 * kStep);
      weight = kept;
      want += kept * slope * slope.transpose();
    }
    EXPECT_LT((result.matrix - want).cwiseAbs().maxCoeff(), 1e-6 * want.cwiseAbs().maxCoeff());
  }
}

TEST(PolychoricAcov, ThreadsDoNotMatter) {
  const Sample sample = MakeSample(9'000);
  const auto one = Polychoric(sample.Block(), sample.categories, EDeletion::Pairwise, 1);
  const auto two = Polychoric(sample.Block(), sample.categories, EDeletion::Pairwise, 2);
  EXPECT_TRUE((one.matrix.array() == two.matrix.array()).all());
}

TEST(PolychoricAcov, NamesThePairWithoutEstimate) {
  const std::vector<std::uint8_t> codes = {0, 1, 0, 1, 1, 0, 0, 1, 0, 1, 1, 1, 0, 0, 0, 0, 0, 0};
  const auto result = Polychoric({codes.data(), 6, 3, 6, nullptr}, {2, 2, 2}, EDeletion::Listwise);
  EXPECT_NE(result.status, EStatus::Ok);
  EXPECT_EQ(result.variable, 1);  // one empty cell: the estimate is at the boundary
  EXPECT_EQ(result.other, 0);
  EXPECT_EQ(result.matrix.size(), 0);
}

// Moments of the attitude data by their definitions.
struct Attitude {
  MatrixXd z;  // centred
  MatrixXd s;  // divisor n
  double n;

  explicit Attitude(const oracle::Data& data) {
    z = Eigen::Map<const Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>>(
        data.cells.data(), data.Cases(), data.Variables());
    z.rowwise() -= z.colwise().mean().eval();
    n = static_cast<double>(z.rows());
    s = z.transpose() * z / n;
  }
  double Fourth(int i, int j, int k, int l) const {
    return (z.col(i).array() * z.col(j).array() * z.col(k).array() * z.col(l).array()).mean();
  }
};

MatrixXd ProductMoments(const oracle::Data& data, EMoments kind, int threads = 1) {
  CMoments moments(data.Variables(), EDeletion::Pairwise);
  moments.Add(data.Block());
  stats::CProductMomentAcov acov(moments, kind, threads);
  acov.Add(data.Block());
  return acov.Result().matrix;
}

TEST(ProductMomentAcov, OfCovariancesIsMadeOfFourthMoments) {
  const oracle::Data data = oracle::ReadCsv("attitude.csv");
  const Attitude a(data);
  const MatrixXd got = ProductMoments(data, EMoments::Covariance);
  ASSERT_EQ(got.rows(), 28);
  for (int i = 0, row = 0; i < 7; ++i) {
    for (int j = 0; j <= i; ++j, ++row) {
      for (int k = 0, column = 0; k < 7; ++k) {
        for (int l = 0; l <= k; ++l, ++column) {
          const double want = (a.Fourth(i, j, k, l) - a.s(i, j) * a.s(k, l)) / a.n;
          EXPECT_NEAR(got(row, column), want,
                      1e-10 * std::sqrt(got(row, row) * got(column, column)));
        }
      }
    }
  }
}

// Steiger and Hakstian's formula in standardised fourth moments.
TEST(ProductMomentAcov, OfCorrelationsFollowsThePublishedFormula) {
  const oracle::Data data = oracle::ReadCsv("attitude.csv");
  Attitude a(data);
  for (int j = 0; j < 7; ++j) a.z.col(j) /= std::sqrt(a.s(j, j));
  a.s = a.z.transpose() * a.z / a.n;
  const auto r = [&](int i, int j, int k, int l) { return a.Fourth(i, j, k, l); };
  const MatrixXd got = ProductMoments(data, EMoments::Correlation);
  ASSERT_EQ(got.rows(), 21);
  for (int i = 1, row = 0; i < 7; ++i) {
    for (int j = 0; j < i; ++j, ++row) {
      for (int k = 1, column = 0; k < 7; ++k) {
        for (int l = 0; l < k; ++l, ++column) {
          const double want = r(i, j, k, l) +
                              .25 * a.s(i, j) * a.s(k, l) *
                                  (r(i, i, k, k) + r(j, j, k, k) + r(i, i, l, l) + r(j, j, l, l)) -
                              .5 * a.s(i, j) * (r(i, i, k, l) + r(j, j, k, l)) -
                              .5 * a.s(k, l) * (r(i, j, k, k) + r(i, j, l, l));
          EXPECT_NEAR(got(row, column), want / a.n,
                      1e-10 * std::sqrt(got(row, row) * got(column, column)));
        }
      }
    }
  }
}

TEST(ProductMomentAcov, WeightsCountCasesAndThreadsDoNotMatter) {
  const oracle::Data data = oracle::ReadCsv("attitude.csv");
  std::vector<double> weights, repeated;
  for (std::int64_t k = 0; k < data.Cases(); ++k) {
    weights.push_back(static_cast<double>(k % 3));
    for (int w = 0; w < k % 3; ++w)
      repeated.insert(repeated.end(), data.cells.begin() + 7 * k, data.cells.begin() + 7 * k + 7);
  }
  const auto compute = [](const stats::CaseBlock& block, int threads) {
    CMoments moments(7, EDeletion::Listwise, threads);
    moments.Add(block);
    stats::CProductMomentAcov acov(moments, EMoments::Correlation, threads);
    acov.Add(block);
    return acov.Result().matrix;
  };
  stats::CaseBlock block = data.Block();
  block.weights = weights.data();
  const MatrixXd a = compute(block, 1), b = compute(block, 2);
  const MatrixXd c =
      compute({repeated.data(), static_cast<std::int64_t>(repeated.size() / 7), 7, 7, nullptr}, 1);
  EXPECT_TRUE((a.array() == b.array()).all());
  EXPECT_LT((a - c).cwiseAbs().maxCoeff(), 1e-13 * a.cwiseAbs().maxCoeff());
}

TEST(ProductMomentAcov, ReportsWhatCannotBeComputed) {
  const std::vector<double> cells = {1, 7, 2, 7, 3, 7};
  CMoments moments(2, EDeletion::Listwise);
  moments.Add({cells.data(), 3, 2, 2, nullptr});
  const auto result = stats::CProductMomentAcov(moments, EMoments::Correlation).Result();
  EXPECT_EQ(result.status, EStatus::Constant);
  EXPECT_EQ(result.variable, 1);
  EXPECT_EQ(stats::CProductMomentAcov(CMoments(1, EDeletion::Listwise), EMoments::Covariance)
                .Result()
                .status,
            EStatus::NoCases);
  EXPECT_THROW(stats::CProductMomentAcov(moments, EMoments::Raw), std::invalid_argument);
}

}  // namespace
