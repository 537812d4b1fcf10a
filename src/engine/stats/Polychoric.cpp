#include "engine/stats/Polychoric.h"

#include <algorithm>
#include <cmath>

#include "engine/stats/CellModel.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/Parallel.h"

namespace stats {

namespace {

// Ok when the table has cases in at least two rows and two columns.
EStatus CheckTable(const FrequencyTable& table, PolychoricResult& result) {
  if (table.rows < 1 || table.columns < 1 ||
      table.count.size() !=
          static_cast<std::size_t>(table.rows) * static_cast<std::size_t>(table.columns))
    return EStatus::BadArgument;
  std::vector<double> row(static_cast<std::size_t>(table.rows)),
      column(static_cast<std::size_t>(table.columns));
  double n = 0;
  int cells = 0;
  for (int a = 0; a < table.rows; ++a) {
    for (int b = 0; b < table.columns; ++b) {
      const double f = table.At(a, b);
      if (!std::isfinite(f) || f < 0) return EStatus::NotFinite;
      row[static_cast<std::size_t>(a)] += f;
      column[static_cast<std::size_t>(b)] += f;
      n += f;
      cells += f > 0 ? 1 : 0;
    }
  }
  if (!std::isfinite(n)) return EStatus::NotFinite;
  if (n == 0) return EStatus::ZeroWeights;
  result.n = n;
  const auto filled = [](const std::vector<double>& margin) {
    return static_cast<int>(
        std::count_if(margin.begin(), margin.end(), [](double f) { return f > 0; }));
  };
  result.emptyCells = filled(row) * filled(column) - cells;
  return filled(row) < 2 || filled(column) < 2 ? EStatus::OneCategory : EStatus::Ok;
}

bool Fits(const std::vector<double>& thresholds, int categories) {
  return static_cast<int>(thresholds.size()) == categories - 1 &&
         std::none_of(thresholds.begin(), thresholds.end(),
                      [](double t) { return std::isnan(t); }) &&
         std::is_sorted(thresholds.begin(), thresholds.end());
}

// The mean of a standard normal variable within each category.
std::vector<double> Scores(const std::vector<double>& thresholds) {
  std::vector<double> scores;
  double low = -HUGE_VAL;
  for (std::size_t a = 0; a <= thresholds.size(); ++a) {
    const double high = a < thresholds.size() ? thresholds[a] : HUGE_VAL;
    const double share = NormalInterval(low, high);
    scores.push_back(share > 0 ? (NormalDensity(low) - NormalDensity(high)) / share : 0.0);
    low = high;
  }
  return scores;
}

// To first order in r the covariance of the scores is r times the product of their variances.
double StartingValue(const FrequencyTable& table, double n,
                     const std::vector<double>& rowThresholds,
                     const std::vector<double>& columnThresholds) {
  const std::vector<double> x = Scores(rowThresholds), y = Scores(columnThresholds);
  double xx = 0, yy = 0, xy = 0;
  for (int a = 0; a < table.rows; ++a) {
    for (int b = 0; b < table.columns; ++b) {
      const double share = table.At(a, b) / n;
      const double sx = x[static_cast<std::size_t>(a)], sy = y[static_cast<std::size_t>(b)];
      xx += share * sx * sx;
      yy += share * sy * sy;
      xy += share * sx * sy;
    }
  }
  return xx > 0 && yy > 0 ? xy / (xx * yy) : 0.0;
}

std::vector<double> MarginOf(const FrequencyTable& table, bool rows) {
  std::vector<double> margin(static_cast<std::size_t>(rows ? table.rows : table.columns), 0.0);
  for (int a = 0; a < table.rows; ++a) {
    for (int b = 0; b < table.columns; ++b)
      margin[static_cast<std::size_t>(rows ? a : b)] += table.At(a, b);
  }
  return margin;
}

}  // namespace

PolychoricResult EstimatePolychoric(const FrequencyTable& table,
                                    const std::vector<double>& rowThresholds,
                                    const std::vector<double>& columnThresholds) {
  PolychoricResult result;
  result.status = CheckTable(table, result);
  if (result.status != EStatus::Ok) return result;
  if (!Fits(rowThresholds, table.rows) || !Fits(columnThresholds, table.columns)) {
    result.status = EStatus::BadArgument;
    return result;
  }
  CCellModel model(rowThresholds, columnThresholds);
  const CorrelationMaximum maximum = MaximiseOverCorrelation(
      [&](double r) {
        model.Evaluate(r);
        return model.Likelihood(table, result.n);
      },
      StartingValue(table, result.n, rowThresholds, columnThresholds), result.n);
  result.status = maximum.status;
  result.iterations = maximum.iterations;
  // Cases where the thresholds leave no room for any: no correlation explains them.
  if (!maximum.at.valid) {
    result.status = EStatus::BadArgument;
    return result;
  }
  result.r = maximum.r;
  result.gradient = maximum.at.slope;
  result.logLikelihood = result.n * maximum.at.value;
  if (result.status == EStatus::Ok) {
    result.standardError = 1 / std::sqrt(-maximum.at.curve * result.n);
    result.expectedStandardError = 1 / std::sqrt(maximum.at.information * result.n);
  }
  return result;
}

PolychoricResult EstimatePolychoric(const FrequencyTable& table) {
  PolychoricResult result;
  result.status = CheckTable(table, result);
  if (result.status != EStatus::Ok) return result;
  return EstimatePolychoric(table, EstimateThresholds(MarginOf(table, true)).threshold,
                            EstimateThresholds(MarginOf(table, false)).threshold);
}

bool PolychoricMatrix::Complete() const {
  return std::all_of(pairs.begin(), pairs.end(),
                     [](const PolychoricResult& pair) { return pair.status == EStatus::Ok; });
}

void SetCorrelations(PolychoricMatrix& matrix) {
  const auto variables = static_cast<int>(matrix.thresholds.size());
  matrix.correlation = Eigen::MatrixXd::Identity(variables, variables);
  for (int i = 1; i < variables; ++i) {
    for (int j = 0; j < i; ++j) {
      const PolychoricResult& pair = matrix.pairs[static_cast<std::size_t>(PairIndex(i, j))];
      // A value at the boundary is an answer of its own; any other failure leaves 0.
      const bool usable = pair.status == EStatus::Ok || pair.status == EStatus::Boundary;
      matrix.correlation(i, j) = matrix.correlation(j, i) = usable ? pair.r : 0.0;
    }
  }
}

PolychoricMatrix EstimatePolychoricMatrix(const CPairTables& tables, int threads) {
  PolychoricMatrix matrix = EstimatePolychoricPart(tables, threads, 0, 1);
  SetCorrelations(matrix);
  return matrix;
}

PolychoricMatrix EstimatePolychoricPart(const CPairTables& tables, int threads, int part,
                                        int parts) {
  PolychoricMatrix matrix;
  const int variables = tables.Variables();
  for (int i = 0; i < variables; ++i)
    matrix.thresholds.push_back(EstimateThresholds(tables.Margin(i)));
  matrix.pairs.resize(static_cast<std::size_t>(PairIndex(variables, 0)));
  // A piece of work is a variable with all earlier ones; the longest come first.
  ParallelFor(threads, variables, [&](std::int64_t piece) {
    const int i = variables - 1 - static_cast<int>(piece);
    const ThresholdResult& rows = matrix.thresholds[static_cast<std::size_t>(i)];
    for (int j = 0; j < i; ++j) {
      const ThresholdResult& columns = matrix.thresholds[static_cast<std::size_t>(j)];
      if (PairIndex(i, j) % parts != part) continue;
      PolychoricResult& pair = matrix.pairs[static_cast<std::size_t>(PairIndex(i, j))];
      if (rows.status != EStatus::Ok || columns.status != EStatus::Ok) {
        pair.status = rows.status != EStatus::Ok ? rows.status : columns.status;
        continue;
      }
      pair = EstimatePolychoric(tables.Table(i, j), rows.threshold, columns.threshold);
    }
  });
  return matrix;
}

}  // namespace stats
