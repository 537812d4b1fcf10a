#include <cmath>
#include <random>
#include <stdexcept>

#include "Oracle.h"
#include "engine/stats/Moments.h"

namespace {

using stats::CaseBlock;
using stats::CMoments;
using stats::ComputeMoments;
using stats::EDeletion;
using stats::EMoments;
using stats::EStatus;
using stats::MomentMatrix;

TEST(Moments, PearsonAgreesWithTheReference) {
  const oracle::Data items = oracle::Items();
  CMoments moments(10, EDeletion::Listwise);
  moments.Add(items.Block());
  const MomentMatrix matrix = ComputeMoments(moments, EMoments::Correlation);
  ASSERT_EQ(matrix.status, EStatus::Ok);
  const oracle::Json& want = oracle::Screening().at("pearson");
  for (int i = 0; i < 10; ++i) {
    for (int j = 0; j < 10; ++j)
      oracle::ExpectClose(matrix.matrix(i, j),
                          want[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)], 1e-8,
                          "r");
  }
  const oracle::Json& univariate = oracle::Screening().at("univariate").at("items_listwise");
  for (int i = 0; i < 10; ++i) {
    const std::string& name = oracle::kItems[static_cast<std::size_t>(i)];
    oracle::ExpectClose(matrix.mean[i], univariate.at(name).at("mean"), 1e-8, name);
    oracle::ExpectClose(matrix.sd[i], univariate.at(name).at("sd"), 1e-8, name);
  }
}

struct Sample {
  std::vector<double> cells, weights;
  int variables = 0;
  std::int64_t cases = 0;
  CaseBlock Block(std::int64_t first, std::int64_t end) const {
    return {cells.data() + first * variables, end - first, variables, variables,
            weights.data() + first};
  }
  CaseBlock Whole() const { return Block(0, cases); }
};

// Correlated values with different offsets, gaps, and weights of which some are zero.
Sample MakeSample(std::int64_t cases, int variables, double gaps) {
  Sample sample{{}, {}, variables, cases};
  std::mt19937 random(11);
  std::normal_distribution<double> normal;
  std::uniform_real_distribution<double> uniform;
  for (std::int64_t k = 0; k < cases; ++k) {
    const double common = normal(random);
    for (int j = 0; j < variables; ++j) {
      const double x = 1000.0 * j + (j + 1) * (common + normal(random));
      sample.cells.push_back(uniform(random) < gaps ? NAN : x);
    }
    sample.weights.push_back(static_cast<double>(random() % 4));
  }
  return sample;
}

// The definition, in extended precision, over the cases that have i and j.
struct Naive {
  long double n = 0, meanI = 0, meanJ = 0, product = 0, squareI = 0, raw = 0;
};

Naive Define(const Sample& s, int i, int j) {
  Naive d;
  for (int pass = 0; pass < 2; ++pass) {
    for (std::int64_t k = 0; k < s.cases; ++k) {
      const double x = s.cells[static_cast<std::size_t>(k * s.variables + i)];
      const double y = s.cells[static_cast<std::size_t>(k * s.variables + j)];
      const long double w = s.weights[static_cast<std::size_t>(k)];
      if (std::isnan(x) || std::isnan(y)) continue;
      if (pass == 0) {
        d.n += w;
        d.meanI += w * x;
        d.meanJ += w * y;
        d.raw += w * x * y;
      } else {
        d.product += w * (x - d.meanI) * (y - d.meanJ);
        d.squareI += w * (x - d.meanI) * (x - d.meanI);
      }
    }
    if (pass == 0) {
      d.meanI /= d.n;
      d.meanJ /= d.n;
      d.raw /= d.n;
    }
  }
  return d;
}

TEST(Moments, PairwiseFollowsTheDefinition) {
  const Sample sample = MakeSample(1500, 9, .1);
  CMoments moments(9, EDeletion::Pairwise);
  moments.Add(sample.Block(0, 700));
  moments.Add(sample.Block(700, 1500));
  const MomentMatrix covariance = ComputeMoments(moments, EMoments::Covariance);
  const MomentMatrix correlation = ComputeMoments(moments, EMoments::Correlation);
  const MomentMatrix raw = ComputeMoments(moments, EMoments::Raw);
  for (int i = 0; i < 9; ++i) {
    for (int j = 0; j < 9; ++j) {
      const Naive d = Define(sample, i, j);
      const double sizes = static_cast<double>(std::sqrt(d.squareI * Define(sample, j, i).squareI));
      EXPECT_EQ(moments.N(i, j), static_cast<double>(d.n));
      EXPECT_NEAR(moments.Mean(i, j), static_cast<double>(d.meanI), 1e-12 * (1 + 1000 * i));
      EXPECT_NEAR(covariance.matrix(i, j), static_cast<double>(d.product / (d.n - 1)),
                  1e-13 * sizes / static_cast<double>(d.n));
      EXPECT_NEAR(correlation.matrix(i, j), static_cast<double>(d.product) / sizes, 1e-13);
      EXPECT_NEAR(raw.matrix(i, j), static_cast<double>(d.raw),
                  1e-13 * (1 + std::fabs(static_cast<double>(d.raw))));
    }
  }
}

TEST(Moments, ListwiseOfCompleteCasesIsPairwise) {
  const Sample sample = MakeSample(900, 5, 0);
  CMoments list(5, EDeletion::Listwise), pairs(5, EDeletion::Pairwise);
  list.Add(sample.Whole());
  pairs.Add(sample.Whole());
  for (int i = 0; i < 5; ++i) {
    for (int j = 0; j < 5; ++j) {
      EXPECT_NEAR(list.Product(i, j), pairs.Product(i, j), 1e-12 * std::fabs(list.Product(i, j)));
      EXPECT_NEAR(list.Mean(i, j), pairs.Mean(i, j), 1e-13 * (1 + 1000 * i));
      EXPECT_EQ(list.N(i, j), pairs.N(i, j));
    }
  }
}

TEST(Moments, TheAugmentedMatrixHoldsTheMeans) {
  const std::vector<double> cells = {1, 2, 3, 8, 5, 5};
  CMoments moments(2, EDeletion::Listwise);
  moments.Add({cells.data(), 3, 2, 2, nullptr});
  const Eigen::MatrixXd m = ComputeMoments(moments, EMoments::Augmented).matrix;
  Eigen::MatrixXd want(3, 3);
  want << 35. / 3, 17, 3, 17, 31, 5, 3, 5, 1;
  EXPECT_LT((m - want).cwiseAbs().maxCoeff(), 1e-13);
}

TEST(Moments, KeepTheirDigitsAtAHugeOffset) {
  std::mt19937 random(2);
  std::vector<double> plain(60'000), moved;
  for (double& x : plain) x = static_cast<double>(random() % 4096) / 1024;
  for (std::size_t at = 1; at < plain.size(); at += 2) plain[at] = (plain[at] + plain[at - 1]) / 2;
  for (const double x : plain) moved.push_back(x + 536870912.0);
  for (const EDeletion deletion : {EDeletion::Listwise, EDeletion::Pairwise}) {
    CMoments a(2, deletion), b(2, deletion);
    a.Add({plain.data(), 30'000, 2, 2, nullptr});
    b.Add({moved.data(), 30'000, 2, 2, nullptr});
    for (int j = 0; j < 2; ++j)
      EXPECT_NEAR(b.Product(1, j), a.Product(1, j), 1e-12 * a.Product(1, j));
  }
}

TEST(Moments, ThreadsAndMergingGiveTheSame) {
  const Sample sample = MakeSample(50'000, 10, .02);
  for (const EDeletion deletion : {EDeletion::Listwise, EDeletion::Pairwise}) {
    CMoments one(10, deletion, 1), two(10, deletion, 2), front(10, deletion), back(10, deletion);
    one.Add(sample.Whole());
    two.Add(sample.Whole());
    front.Add(sample.Block(0, 12'345));
    back.Add(sample.Block(12'345, 50'000));
    front.Merge(back);
    EXPECT_EQ(front.Cases(), one.Cases());
    EXPECT_EQ(front.LeftOut(), one.LeftOut());
    for (int i = 0; i < 10; ++i) {
      for (int j = 0; j < 10; ++j) {
        EXPECT_EQ(one.Product(i, j), two.Product(i, j));
        EXPECT_EQ(one.Mean(i, j), two.Mean(i, j));
        EXPECT_NEAR(one.Product(i, j), front.Product(i, j), 1e-11 * std::fabs(one.Product(i, j)));
        EXPECT_NEAR(one.Mean(i, j), front.Mean(i, j), 1e-12 * (1 + 1000 * i));
      }
    }
  }
}

TEST(Moments, ReportWhatCannotBeComputed) {
  struct {
    const char* name;
    std::vector<double> cells;  // two variables
    std::vector<double> weights;
    EDeletion deletion;
    EMoments kind;
    EStatus status;
    int variable;
  } const cases[] = {
      {"none", {}, {}, EDeletion::Listwise, EMoments::Raw, EStatus::NoCases, -1},
      {"all incomplete",
       {1, NAN, NAN, 2},
       {},
       EDeletion::Listwise,
       EMoments::Raw,
       EStatus::NoCases,
       -1},
      {"no pair",
       {1, NAN, 3, NAN, NAN, 2, NAN, 7},
       {},
       EDeletion::Pairwise,
       EMoments::Covariance,
       EStatus::NoCases,
       1},
      {"no weight",
       {1, 2, 3, 4},
       {0, -1},
       EDeletion::Listwise,
       EMoments::Raw,
       EStatus::ZeroWeights,
       -1},
      {"single", {1, 2}, {}, EDeletion::Listwise, EMoments::Covariance, EStatus::TooFewCases, 0},
      {"constant",
       {1, .1, 3, .1, 4, .1},
       {},
       EDeletion::Listwise,
       EMoments::Correlation,
       EStatus::Constant,
       1},
      {"constant in the pair",
       {1, .1, 3, .1, NAN, 9, 8, .1},
       {},
       EDeletion::Pairwise,
       EMoments::Correlation,
       EStatus::Constant,
       1},
      {"constant but no correlation wanted",
       {1, .1, 3, .1},
       {},
       EDeletion::Listwise,
       EMoments::Covariance,
       EStatus::Ok,
       -1},
      {"infinite",
       {1, 2, HUGE_VAL, 3},
       {},
       EDeletion::Listwise,
       EMoments::Raw,
       EStatus::NotFinite,
       -1},
  };
  for (const auto& c : cases) {
    CMoments moments(2, c.deletion);
    moments.Add({c.cells.data(), static_cast<std::int64_t>(c.cells.size() / 2), 2, 2,
                 c.weights.empty() ? nullptr : c.weights.data()});
    const MomentMatrix result = ComputeMoments(moments, c.kind);
    EXPECT_EQ(result.status, c.status) << c.name << ": " << stats::StatusText(result.status);
    EXPECT_EQ(result.variable, c.variable) << c.name;
    EXPECT_TRUE(result.matrix.allFinite()) << c.name;
  }
  CMoments moments(2, EDeletion::Listwise);
  EXPECT_THROW(moments.Add({nullptr, 3, 2, 2, nullptr}), std::invalid_argument);
  EXPECT_THROW(moments.Add({nullptr, 0, 3, 3, nullptr}), std::invalid_argument);
}

TEST(Definiteness, IsReportedNotRepaired) {
  Eigen::MatrixXd r(3, 3);
  r << 1, .9, -.9, .9, 1, .9, -.9, .9, 1;
  const stats::Definiteness indefinite = stats::CheckPositiveDefinite(r);
  EXPECT_EQ(indefinite.status, EStatus::NotPositiveDefinite);
  EXPECT_NEAR(indefinite.smallest, -.8, 1e-14);
  EXPECT_EQ(indefinite.notAboveZero, 1);
  // A variable twice: the smallest eigenvalue is zero but for rounding.
  Eigen::MatrixXd twice = Eigen::MatrixXd::Constant(2, 2, 1 / 3.);
  EXPECT_EQ(stats::CheckPositiveDefinite(twice).status, EStatus::NotPositiveDefinite);
  EXPECT_EQ(stats::CheckPositiveDefinite(Eigen::MatrixXd::Identity(4, 4)).status, EStatus::Ok);
  r(0, 0) = NAN;
  EXPECT_EQ(stats::CheckPositiveDefinite(r).status, EStatus::NotFinite);
  EXPECT_EQ(stats::CheckPositiveDefinite(Eigen::MatrixXd()).status, EStatus::BadArgument);
}

}  // namespace
