#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "engine/stats/MixedAcov.h"

namespace {

using Eigen::MatrixXd;
using Eigen::VectorXd;
using stats::EDeletion;
using stats::EMoments;
using stats::EStatus;

// Two continuous and two ordinal variables (3 and 4 categories) with gaps and weights, and
// everything that the asymptotic covariances rest on.
class MixedSample {
 public:
  explicit MixedSample(std::int64_t cases) : cases_(cases), codes_(2 * Size()) {
    std::mt19937 random(8);
    std::normal_distribution<double> normal;
    for (std::size_t k = 0; k < Size(); ++k) {
      const double common = normal(random);
      for (int j = 0; j < 2; ++j) {
        const double x = 5 + 3 * (common + normal(random) * normal(random));
        cells_.push_back(random() % 11 == 0 ? std::nan("") : x);
        const int category =
            std::clamp(static_cast<int>(std::floor(common + normal(random) + 2)), 0, 2 + j);
        codes_[static_cast<std::size_t>(j) * Size() + k] =
            random() % 11 == 0 ? stats::kMissingCode : static_cast<std::uint8_t>(category);
      }
      weights.push_back(1 + static_cast<double>(random() % 3));
    }
  }

  std::vector<double> weights;

  stats::CaseBlock Cells() const { return {cells_.data(), cases_, 2, 2, weights.data()}; }
  stats::CodeBlock Codes() const { return {codes_.data(), cases_, 2, cases_, weights.data()}; }

  void Estimate(EDeletion deletion) {
    // Complete in all variables together, as a run gives them to the accumulators.
    std::vector<double> cells, used;
    std::vector<std::uint8_t> codes[2];
    for (std::size_t k = 0; k < Size(); ++k) {
      if (deletion == EDeletion::Listwise && !Complete(k)) continue;
      used.push_back(weights[k]);
      for (std::size_t j = 0; j < 2; ++j) {
        cells.push_back(cells_[2 * k + j]);
        codes[j].push_back(codes_[j * Size() + k]);
      }
    }
    const auto n = static_cast<std::int64_t>(used.size());
    moments_.emplace(2, deletion);
    moments_->Add({cells.data(), n, 2, 2, used.data()});
    tables_.emplace(std::vector<int>{3, 4}, deletion);
    std::vector<std::uint8_t> both = codes[0];
    both.insert(both.end(), codes[1].begin(), codes[1].end());
    tables_->Add({both.data(), n, 2, n, used.data()});
    polychoric_ = stats::EstimatePolychoricMatrix(*tables_);
    polyserial_.clear();
    for (std::size_t i = 0; i < 2; ++i) {
      for (std::size_t j = 0; j < 2; ++j) {
        std::vector<double> column;
        for (std::size_t k = 0; k < used.size(); ++k) column.push_back(cells[2 * k + j]);
        polyserial_.push_back(stats::EstimatePolyserial(column.data(), codes[i].data(), n,
                                                        i == 0 ? 3 : 4, used.data()));
      }
    }
  }

  // The elements of the matrix of ordinal 1, numeric 1, numeric 2, ordinal 2.
  VectorXd Elements(EMoments kind) const {
    const bool covariance = kind == EMoments::Covariance;
    const double r12 = polychoric_.correlation(1, 0);
    const auto s = [&](std::size_t pair, int numeric) {
      const double n = moments_->N(numeric, numeric);
      return polyserial_[pair].r *
             (covariance ? std::sqrt(moments_->Product(numeric, numeric) / n) : 1);
    };
    const auto product = [&](int i, int j) {
      return moments_->Product(i, j) /
             (covariance ? moments_->N(i, j)
                         : std::sqrt(moments_->Square(i, j) * moments_->Square(j, i)));
    };
    VectorXd all(covariance ? 10 : 6);
    if (covariance) {
      all << 1, s(0, 0), product(0, 0), s(1, 1), product(1, 0), product(1, 1), r12, s(2, 0),
          s(3, 1), 1;
    } else {
      all << s(0, 0), s(1, 1), product(1, 0), r12, s(2, 0), s(3, 1);
    }
    return all;
  }

  stats::AsymptoticCovarianceResult Acov(EMoments kind, EDeletion deletion, int threads) const {
    stats::CMixedAcov acov({{true, 0}, {false, 0}, {false, 1}, {true, 1}},
                           {&*moments_, &*tables_, &polychoric_, &polyserial_}, kind, deletion,
                           threads);
    acov.Add(Cells(), Codes());
    return acov.Result();
  }

 private:
  std::size_t Size() const { return static_cast<std::size_t>(cases_); }
  bool Complete(std::size_t k) const {
    return !std::isnan(cells_[2 * k]) && !std::isnan(cells_[2 * k + 1]) &&
           codes_[k] != stats::kMissingCode && codes_[Size() + k] != stats::kMissingCode;
  }

  std::int64_t cases_;
  std::vector<double> cells_;
  std::vector<std::uint8_t> codes_;
  std::optional<stats::CMoments> moments_;
  std::optional<stats::CPairTables> tables_;
  stats::PolychoricMatrix polychoric_;
  std::vector<stats::PolyserialResult> polyserial_;
};

// A case's influence is the derivative of the estimates, means, deviations and thresholds included,
// by its weight; found here by estimating anew with a weight a little higher and lower.
TEST(MixedAcov, IsTheSumOfSquaredDerivativesByTheWeights) {
  for (const EDeletion deletion : {EDeletion::Listwise, EDeletion::Pairwise}) {
    for (const EMoments kind : {EMoments::Correlation, EMoments::Covariance}) {
      MixedSample sample(150);
      sample.Estimate(deletion);
      const auto result = sample.Acov(kind, deletion, 1);
      ASSERT_EQ(result.status, EStatus::Ok);
      const Eigen::Index elements = sample.Elements(kind).size();
      ASSERT_EQ(result.matrix.rows(), elements);
      MatrixXd want = MatrixXd::Zero(elements, elements);
      for (double& weight : sample.weights) {
        constexpr double kStep = 1e-3;
        const double kept = weight;
        weight = kept + kStep;
        sample.Estimate(deletion);
        const VectorXd up = sample.Elements(kind);
        weight = kept - kStep;
        sample.Estimate(deletion);
        const VectorXd slope = (up - sample.Elements(kind)) / (2 * kStep);
        weight = kept;
        want += kept * slope * slope.transpose();
      }
      EXPECT_LT((result.matrix - want).cwiseAbs().maxCoeff(), 1e-6 * want.cwiseAbs().maxCoeff());
    }
  }
}

TEST(MixedAcov, ThreadsDoNotMatter) {
  MixedSample sample(3'000);
  sample.Estimate(EDeletion::Pairwise);
  const auto one = sample.Acov(EMoments::Covariance, EDeletion::Pairwise, 1);
  const auto two = sample.Acov(EMoments::Covariance, EDeletion::Pairwise, 2);
  EXPECT_TRUE((one.matrix.array() == two.matrix.array()).all());
}

}  // namespace
