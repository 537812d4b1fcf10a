#include "engine/stats/CommonThresholds.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Cholesky>
#include <Eigen/Core>

#include "engine/stats/Distributions.h"
#include "engine/stats/Moments.h"
#include "engine/stats/Thresholds.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;
using Values = std::vector<double>;

// The thresholds of all variables, one variable after the other, each from its own margin.
struct MarginalCuts {
  Index cuts = 0;                      // of one variable
  VectorXd threshold, density, share;  // the normal density there, and the share of cases up to it
};

MarginalCuts CutMargins(const CPairTables& tables, double n) {
  MarginalCuts margins;
  margins.cuts = tables.Categories(0) - 1;
  const Index size = tables.Variables() * margins.cuts;
  margins.threshold.resize(size);
  margins.density.resize(size);
  margins.share.resize(size);
  for (int i = 0; i < tables.Variables(); ++i) {
    const Values thresholds = EstimateThresholds(tables.Margin(i)).threshold;
    double cumulative = 0;
    for (Index t = 0; t < margins.cuts; ++t) {
      const auto at = static_cast<std::size_t>(t);
      cumulative += tables.Margin(i)[at] / n;
      margins.threshold(i * margins.cuts + t) = thresholds[at];
      margins.density(i * margins.cuts + t) = NormalDensity(thresholds[at]);
      margins.share(i * margins.cuts + t) = cumulative;
    }
  }
  return margins;
}

// Shares of the cases up to category s of the row variable and up to t of the column variable.
MatrixXd CumulativeShares(const FrequencyTable& table, double n) {
  MatrixXd shares(table.rows - 1, table.columns - 1);
  for (Index s = 0; s < shares.rows(); ++s) {
    double row = 0;
    for (Index t = 0; t < shares.cols(); ++t) {
      row += table.At(static_cast<int>(s), static_cast<int>(t)) / n;
      shares(s, t) = row + (s > 0 ? shares(s - 1, t) : 0);
    }
  }
  return shares;
}

MatrixXd CumulativeShares(const VectorXd& share) {
  const Index cuts = share.size();
  MatrixXd shares(cuts, cuts);
  for (Index s = 0; s < cuts; ++s) {
    for (Index t = 0; t < cuts; ++t) shares(s, t) = share(std::min(s, t));
  }
  return shares;
}

// cov(s, t) = (P(x <= s, y <= t) - F_s F_t) / (n density(s) density(t))
MatrixXd CovarianceOf(const MarginalCuts& margins, const CPairTables& tables, double n) {
  const Index cuts = margins.cuts;
  MatrixXd covariance(margins.share.size(), margins.share.size());
  for (int i = 0; i < tables.Variables(); ++i) {
    for (int j = 0; j <= i; ++j) {
      const auto row = margins.share.segment(i * cuts, cuts);
      const auto column = margins.share.segment(j * cuts, cuts);
      const MatrixXd both =
          i == j ? CumulativeShares(row) : CumulativeShares(tables.Table(i, j), n);
      const MatrixXd densities = margins.density.segment(i * cuts, cuts) *
                                 margins.density.segment(j * cuts, cuts).transpose();
      const MatrixXd part = (both - row * column.transpose()).cwiseQuotient(n * densities);
      covariance.block(i * cuts, j * cuts, cuts, cuts) = part;
      covariance.block(j * cuts, i * cuts, cuts, cuts) = part.transpose();
    }
  }
  return covariance;
}

EStatus Check(const CPairTables& tables, double n) {
  const int categories = tables.Categories(0);
  EStatus status = n > 0 ? EStatus::Ok : EStatus::ZeroWeights;
  if (categories < 2) status = EStatus::OneCategory;
  for (int i = 0; i < tables.Variables(); ++i) {
    const Values& margin = tables.Margin(i);
    const bool empty = std::find(margin.begin(), margin.end(), 0.0) != margin.end();
    if (tables.Categories(i) != categories || empty) status = EStatus::BadArgument;
  }
  return status;
}

// Each variable has the same thresholds: the matrix that repeats them.
void FitCommon(const MarginalCuts& margins, int variables, const MatrixXd& covariance,
               CommonThresholdsResult& result) {
  const Index cuts = margins.cuts;
  MatrixXd design(margins.threshold.size(), cuts);
  for (int i = 0; i < variables; ++i) design.middleRows(i * cuts, cuts).setIdentity();
  const Eigen::LLT<MatrixXd> factor(covariance);
  const MatrixXd inverse =
      (design.transpose() * factor.solve(design)).ldlt().solve(MatrixXd::Identity(cuts, cuts));
  const VectorXd common = inverse * (design.transpose() * factor.solve(margins.threshold));
  const VectorXd rest = margins.threshold - design * common;
  result.threshold.assign(common.data(), common.data() + common.size());
  for (Index t = 0; t < cuts; ++t) result.standardError.push_back(std::sqrt(inverse(t, t)));
  result.chiSquare = rest.dot(factor.solve(rest));
  result.df = static_cast<int>((variables - 1) * cuts);
  result.p = ChiSquareUpper(result.chiSquare, result.df);
}

}  // namespace

CommonThresholdsResult EstimateCommonThresholds(const CPairTables& tables) {
  CommonThresholdsResult result;
  const int variables = tables.Variables();
  if (variables < 2) return result;
  for (const double f : tables.Margin(0)) result.n += f;
  result.status = Check(tables, result.n);
  if (result.status != EStatus::Ok) return result;
  const MarginalCuts margins = CutMargins(tables, result.n);
  const MatrixXd covariance = CovarianceOf(margins, tables, result.n);
  result.status = CheckPositiveDefinite(covariance).status;
  if (result.status == EStatus::Ok) FitCommon(margins, variables, covariance, result);
  return result;
}

}  // namespace stats
