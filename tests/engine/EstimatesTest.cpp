#include <algorithm>
#include <numeric>

#include <gtest/gtest.h>

#include "engine/run/Estimates.h"

namespace {

using Eigen::Index;
using Eigen::MatrixXd;

const std::vector<CString> kRows = {"a", "b", "c", "d", "e", "f"};
const std::vector<CString> kFactors = {"1", "2", "3"};

std::vector<ESTIMATES> SetsOf(const MatrixXd& loadings, const MatrixXd& correlation) {
  return {LoadingEstimates("other", kRows, {"1"}, loadings.rowwise().sum()),
          LoadingEstimates("loadings", kRows, kFactors, loadings),
          FactorCorrelationEstimates("correlations", kFactors, correlation)};
}

TEST(Estimates, FactorsOfASampleGetTheOrderAndSignsOfAllCases) {
  MatrixXd loadings(6, 3), correlation(3, 3);
  loadings << .8, .1, 0, -.7, .2, .1, .1, .6, -.1, 0, -.7, .2, .1, 0, .5, -.1, .1, .6;
  correlation << 1, .5, -.3, .5, 1, .1, -.3, .1, 1;
  const auto target = SetsOf(loadings, correlation);
  std::vector<Index> order(3);
  std::iota(order.begin(), order.end(), Index{0});
  do {
    for (int signs = 0; signs < 8; ++signs) {
      // The same factors, those of a sample a little smaller and in disorder.
      MatrixXd turn = MatrixXd::Zero(3, 3);
      for (Index j = 0; j < 3; ++j) {
        turn(order[static_cast<std::size_t>(j)], j) = (signs >> j) % 2 == 0 ? 1 : -1;
      }
      auto sample = SetsOf(.9 * loadings * turn, turn.transpose() * correlation * turn);
      AlignLoadings(target, sample);
      const auto expected = ValuesOf(SetsOf(.9 * loadings, correlation));
      const auto values = ValuesOf(sample);
      ASSERT_EQ(values.size(), expected.size());
      // Those of the first set have factors of their own.
      for (std::size_t at = kRows.size(); at < values.size(); ++at) {
        EXPECT_NEAR(values[at], expected[at], 1e-12) << at << " with signs " << signs;
      }
    }
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(Estimates, FactorsThatAllCasesLackAreLeftOut) {
  const MatrixXd loadings = MatrixXd::Ones(6, 3);
  const auto whole = std::vector<ESTIMATES>{MakeEstimates("other")};
  auto sample = SetsOf(loadings, MatrixXd::Identity(3, 3));
  sample.push_back(MakeEstimates("coefficients"));
  LeaveOutFactors(whole, sample);
  ASSERT_EQ(sample.size(), 2U);
  EXPECT_EQ(sample[1].title, "coefficients");
}

}  // namespace
