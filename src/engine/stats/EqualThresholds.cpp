#include "engine/stats/EqualThresholds.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Cholesky>
#include <Eigen/Core>

#include "engine/stats/CellModel.h"
#include "engine/stats/CorrelationSearch.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/Polychoric.h"
#include "engine/stats/Scoring.h"
#include "engine/stats/Thresholds.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;
using Values = std::vector<double>;

Values ToValues(const VectorXd& v) {
  return {v.data(), v.data() + v.size()};
}

VectorXd ToVector(const Values& v) {
  return Eigen::Map<const VectorXd>(v.data(), static_cast<Index>(v.size()));
}

// Thresholds of the rows, those of the columns (none when they are the same), and the correlation.
class CTableLikelihood {
 public:
  CTableLikelihood(const FrequencyTable& table, double n, bool equal)
      : table_(table), n_(n), cuts_(table.rows - 1), equal_(equal) {}

  Scoring operator()(const VectorXd& x) const {
    Scoring scoring;
    const Index size = x.size();
    const Values rows = ToValues(x.head(cuts_));
    const Values columns = equal_ ? rows : ToValues(x.segment(cuts_, cuts_));
    const double r = x(size - 1);
    if (!(std::fabs(r) < kLargestCorrelation) || !Ascends(rows) || !Ascends(columns))
      return scoring;
    CCellModel model(rows, columns);
    model.Evaluate(r);
    const std::vector<VectorXd> slopes = CellSlopes(model, size);
    scoring.Begin(size);
    for (int a = 0; a < table_.rows; ++a) {
      for (int b = 0; b < table_.columns; ++b) {
        if (!scoring.Add(table_.At(a, b) / n_, model.Probability(a, b),
                         slopes[CellIndex(a, table_.columns, b)])) {
          return scoring;
        }
      }
    }
    return scoring;
  }

 private:
  static bool Ascends(const Values& values) {
    return std::adjacent_find(values.begin(), values.end(), std::greater_equal<>()) == values.end();
  }

  // Derivatives of the cells' probabilities by all parameters.
  std::vector<VectorXd> CellSlopes(const CCellModel& model, Index size) const {
    std::vector<VectorXd> slopes(table_.count.size(), VectorXd::Zero(size));
    const int c = table_.columns;
    for (int a = 0; a < table_.rows; ++a) {
      for (int b = 0; b < c; ++b) slopes[CellIndex(a, c, b)](size - 1) = model.Slope(a, b);
    }
    for (int t = 0; t < cuts_; ++t) {
      const Values byRow = model.ByRowThreshold(t).probability;
      const Values byColumn = model.ByColumnThreshold(t).probability;
      const Index column = equal_ ? t : cuts_ + t;
      for (int o = 0; o < c; ++o) {
        const auto at = static_cast<std::size_t>(o);
        slopes[CellIndex(t, c, o)](t) += byRow[at];
        slopes[CellIndex(t + 1, c, o)](t) -= byRow[at];
        slopes[CellIndex(o, c, t)](column) += byColumn[at];
        slopes[CellIndex(o, c, t + 1)](column) -= byColumn[at];
      }
    }
    return slopes;
  }

  const FrequencyTable& table_;
  double n_;
  int cuts_;
  bool equal_;
};

}  // namespace

EqualThresholdsResult TestEqualThresholds(const FrequencyTable& table) {
  EqualThresholdsResult result;
  if (table.rows != table.columns || table.rows < 1) return result;
  Values row(static_cast<std::size_t>(table.rows), 0);
  Values column = row;
  for (int a = 0; a < table.rows; ++a) {
    for (int b = 0; b < table.columns; ++b) {
      row[static_cast<std::size_t>(a)] += table.At(a, b);
      column[static_cast<std::size_t>(b)] += table.At(a, b);
      result.n += table.At(a, b);
    }
  }
  result.status = result.n > 0 ? EStatus::Ok : EStatus::ZeroWeights;
  if (result.status == EStatus::Ok && table.rows < 2) result.status = EStatus::OneCategory;
  Values pooled = row;
  for (std::size_t a = 0; a < row.size() && result.status == EStatus::Ok; ++a) {
    pooled[a] += column[a];
    if (row[a] == 0 || column[a] == 0) result.status = EStatus::BadArgument;
  }
  if (result.status != EStatus::Ok) return result;
  const PolychoricResult start = EstimatePolychoric(table);
  result.status = start.status;
  if (result.status != EStatus::Ok) return result;

  const Index cuts = table.rows - 1;
  VectorXd equal(cuts + 1);
  equal << ToVector(EstimateThresholds(pooled).threshold), start.r;
  VectorXd free(2 * cuts + 1);
  free << ToVector(EstimateThresholds(row).threshold),
      ToVector(EstimateThresholds(column).threshold), start.r;
  Scoring atEqual, atFree;
  if (!MaximiseByScoring(equal, atEqual, CTableLikelihood(table, result.n, true)) ||
      !MaximiseByScoring(free, atFree, CTableLikelihood(table, result.n, false))) {
    result.status = EStatus::NotConverged;
    return result;
  }
  const MatrixXd covariance =
      atEqual.information.ldlt().solve(MatrixXd::Identity(cuts + 1, cuts + 1)) / result.n;
  for (Index t = 0; t < cuts; ++t) result.standardError.push_back(std::sqrt(covariance(t, t)));
  result.threshold = ToValues(equal.head(cuts));
  result.r = equal(cuts);
  result.rError = std::sqrt(covariance(cuts, cuts));
  result.rowThreshold = ToValues(free.head(cuts));
  result.columnThreshold = ToValues(free.segment(cuts, cuts));
  result.rFree = free(2 * cuts);
  result.logLikelihoodEqual = result.n * atEqual.value;
  result.logLikelihoodFree = result.n * atFree.value;
  result.ratio = std::max(0.0, 2 * (result.logLikelihoodFree - result.logLikelihoodEqual));
  result.df = static_cast<int>(cuts);
  result.p = ChiSquareUpper(result.ratio, result.df);
  result.gradient =
      std::max(atEqual.gradient.cwiseAbs().maxCoeff(), atFree.gradient.cwiseAbs().maxCoeff());
  return result;
}

}  // namespace stats
