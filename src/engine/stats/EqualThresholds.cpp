#include "engine/stats/EqualThresholds.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Cholesky>
#include <Eigen/Core>

#include "engine/stats/CellModel.h"
#include "engine/stats/CorrelationSearch.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/Moments.h"
#include "engine/stats/Polychoric.h"
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

// Mean log-likelihood of a table with its gradient and expected information.
struct Scoring {
  double value = -HUGE_VAL;
  VectorXd gradient;
  MatrixXd information;
};

// Maximum by Fisher scoring with halved steps.
template <typename Evaluate>
bool MaximiseByScoring(VectorXd& x, Scoring& at, const Evaluate& evaluate) {
  constexpr int kMostIterations = 1000;
  constexpr double kSmallGradient = 1e-14;
  at = evaluate(x);
  for (int iteration = 0; iteration < kMostIterations && std::isfinite(at.value); ++iteration) {
    const double largest = at.gradient.cwiseAbs().maxCoeff();
    if (largest <= kSmallGradient) break;
    VectorXd step = at.information.ldlt().solve(at.gradient);
    if (!step.allFinite()) return false;
    bool better = false;
    for (int halvings = 0; halvings < 40 && !better; ++halvings, step /= 2) {
      const Scoring next = evaluate(x + step);
      const double rounding = 1e-15 * std::fabs(at.value);
      better = next.value > at.value + rounding ||
               (next.value > at.value - rounding &&
                next.gradient.cwiseAbs().maxCoeff() < 0.999 * largest);
      if (!better) continue;
      x += step;
      at = next;
    }
    if (!better) break;
  }
  constexpr double kEnough = 1e-10;
  return std::isfinite(at.value) && at.gradient.cwiseAbs().maxCoeff() <= kEnough;
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
    double value = 0;
    scoring.gradient.setZero(size);
    scoring.information.setZero(size, size);
    for (int a = 0; a < table_.rows; ++a) {
      for (int b = 0; b < table_.columns; ++b) {
        const VectorXd& slope = slopes[CellIndex(a, table_.columns, b)];
        const double p = model.Probability(a, b);
        if (!(p > 0)) {
          if (table_.At(a, b) > 0) return scoring;
          continue;
        }
        const double share = table_.At(a, b) / n_;
        if (share > 0) value += share * std::log(p);
        scoring.gradient += share / p * slope;
        scoring.information += slope * slope.transpose() / p;
      }
    }
    scoring.value = value;
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

CommonThresholdsResult EstimateCommonThresholds(const CPairTables& tables) {
  CommonThresholdsResult result;
  const int variables = tables.Variables();
  const int categories = variables > 0 ? tables.Categories(0) : 0;
  if (variables < 2) return result;
  for (const double f : tables.Margin(0)) result.n += f;
  result.status = result.n > 0 ? EStatus::Ok : EStatus::ZeroWeights;
  if (categories < 2) result.status = EStatus::OneCategory;
  for (int i = 0; i < variables; ++i) {
    const Values& margin = tables.Margin(i);
    if (tables.Categories(i) != categories ||
        std::find(margin.begin(), margin.end(), 0.0) != margin.end())
      result.status = EStatus::BadArgument;
  }
  if (result.status != EStatus::Ok) return result;
  const Index cuts = categories - 1;
  VectorXd marginal(variables * cuts), density(variables * cuts), share(variables * cuts);
  for (int i = 0; i < variables; ++i) {
    const Values thresholds = EstimateThresholds(tables.Margin(i)).threshold;
    double cumulative = 0;
    for (Index t = 0; t < cuts; ++t) {
      cumulative += tables.Margin(i)[static_cast<std::size_t>(t)] / result.n;
      marginal(i * cuts + t) = thresholds[static_cast<std::size_t>(t)];
      density(i * cuts + t) = NormalDensity(thresholds[static_cast<std::size_t>(t)]);
      share(i * cuts + t) = cumulative;
    }
  }
  MatrixXd covariance(marginal.size(), marginal.size());
  for (int i = 0; i < variables; ++i) {
    for (int j = 0; j <= i; ++j) {
      const FrequencyTable table = i == j ? FrequencyTable() : tables.Table(i, j);
      for (Index s = 0; s < cuts; ++s) {
        for (Index t = 0; t < cuts; ++t) {
          double both = i == j ? share(i * cuts + std::min(s, t)) : 0;  // of the cases up to both
          for (Index a = 0; i != j && a <= s; ++a) {
            for (Index b = 0; b <= t; ++b)
              both += table.At(static_cast<int>(a), static_cast<int>(b)) / result.n;
          }
          const Index row = i * cuts + s;
          const Index column = j * cuts + t;
          covariance(row, column) = covariance(column, row) =
              (both - share(row) * share(column)) / (density(row) * density(column) * result.n);
        }
      }
    }
  }
  result.status = CheckPositiveDefinite(covariance).status;
  if (result.status != EStatus::Ok) return result;
  MatrixXd design(marginal.size(), cuts);
  for (int i = 0; i < variables; ++i) design.middleRows(i * cuts, cuts).setIdentity();
  const Eigen::LLT<MatrixXd> factor(covariance);
  const MatrixXd inverse =
      (design.transpose() * factor.solve(design)).ldlt().solve(MatrixXd::Identity(cuts, cuts));
  const VectorXd common = inverse * (design.transpose() * factor.solve(marginal));
  const VectorXd rest = marginal - design * common;
  result.threshold = ToValues(common);
  for (Index t = 0; t < cuts; ++t) result.standardError.push_back(std::sqrt(inverse(t, t)));
  result.chiSquare = rest.dot(factor.solve(rest));
  result.df = static_cast<int>((variables - 1) * cuts);
  result.p = ChiSquareUpper(result.chiSquare, result.df);
  return result;
}

namespace {

// Probabilities of the categories of a normal variable, with derivatives by mean and sd.
class CMarginLikelihood {
 public:
  CMarginLikelihood(const Values& frequencies, const Values& thresholds, double n, bool withSd)
      : frequencies_(frequencies), thresholds_(thresholds), n_(n), withSd_(withSd) {}

  Scoring operator()(const VectorXd& x) const {
    Scoring scoring;
    const double mean = x(0);
    const double sd = withSd_ ? x(1) : 1;
    if (!(sd > 0)) return scoring;
    double value = 0;
    scoring.gradient.setZero(x.size());
    scoring.information.setZero(x.size(), x.size());
    for (std::size_t a = 0; a < frequencies_.size(); ++a) {
      const double low = a > 0 ? (thresholds_[a - 1] - mean) / sd : -HUGE_VAL;
      const double high = a < thresholds_.size() ? (thresholds_[a] - mean) / sd : HUGE_VAL;
      const double p = NormalInterval(low, high);
      if (!(p > 0)) {
        if (frequencies_[a] > 0) return scoring;
        continue;
      }
      VectorXd slope(x.size());
      const double atLow = NormalDensity(low);
      const double atHigh = NormalDensity(high);
      slope(0) = -(atHigh - atLow) / sd;
      if (withSd_) {
        slope(1) =
            -((std::isinf(high) ? 0 : high * atHigh) - (std::isinf(low) ? 0 : low * atLow)) / sd;
      }
      const double share = frequencies_[a] / n_;
      if (share > 0) value += share * std::log(p);
      scoring.gradient += share / p * slope;
      scoring.information += slope * slope.transpose() / p;
    }
    scoring.value = value;
    return scoring;
  }

 private:
  const Values& frequencies_;
  const Values& thresholds_;
  double n_;
  bool withSd_;
};

double SaturatedLogLikelihood(const Values& frequencies, double n) {
  double sum = 0;
  for (const double f : frequencies) {
    if (f > 0) sum += f * std::log(f / n);
  }
  return sum;
}

}  // namespace

FixedThresholdsResult EstimateUnderThresholds(const Values& frequencies, const Values& thresholds) {
  FixedThresholdsResult result;
  if (thresholds.size() + 1 != frequencies.size() || frequencies.size() < 2) return result;
  for (std::size_t t = 0; t < thresholds.size(); ++t) {
    if (!std::isfinite(thresholds[t]) || (t > 0 && !(thresholds[t] > thresholds[t - 1])))
      return result;
  }
  std::size_t first = frequencies.size(), last = 0;
  for (std::size_t a = 0; a < frequencies.size(); ++a) {
    if (frequencies[a] == 0) continue;
    first = std::min(first, a);
    last = a;
    result.n += frequencies[a];
  }
  const bool withSd = frequencies.size() > 2;
  result.status = !(result.n > 0)              ? EStatus::ZeroWeights
                  : first == last              ? EStatus::OneCategory
                  : withSd && last - first < 2 ? EStatus::Boundary
                                               : EStatus::Ok;
  if (result.status != EStatus::Ok) return result;
  VectorXd x(withSd ? 2 : 1);
  x(0) = 0;
  if (withSd) x(1) = 1;
  const CMarginLikelihood likelihood(frequencies, thresholds, result.n, withSd);
  const double standard = result.n * likelihood(x).value;
  Scoring at;
  if (!MaximiseByScoring(x, at, likelihood)) {
    result.status = EStatus::NotConverged;
    return result;
  }
  const MatrixXd covariance =
      at.information.ldlt().solve(MatrixXd::Identity(x.size(), x.size())) / result.n;
  result.mean = x(0);
  result.meanError = std::sqrt(covariance(0, 0));
  if (withSd) {
    result.sd = x(1);
    result.sdError = std::sqrt(covariance(1, 1));
  }
  result.logLikelihood = result.n * at.value;
  const double saturated = SaturatedLogLikelihood(frequencies, result.n);
  const int cells = static_cast<int>(thresholds.size());
  const auto test = [saturated](double logLikelihood, int df) {
    FixedThresholdsResult::Test t;
    t.df = df;
    t.likelihoodRatio = std::max(0.0, 2 * (saturated - logLikelihood));
    t.p = ChiSquareUpper(t.likelihoodRatio, df);
    return t;
  };
  result.fitted = test(result.logLikelihood, cells - static_cast<int>(x.size()));
  result.standard = test(standard, cells);
  return result;
}

}  // namespace stats
