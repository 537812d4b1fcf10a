// Tests of two-way tables; declared in Polychoric.h.
#include <algorithm>
#include <cmath>

#include "engine/stats/CellModel.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/Polychoric.h"

namespace stats {

namespace {

struct Margins {
  std::vector<double> row, column;
  double n = 0;
  int rows = 0, columns = 0;  // those with cases
};

Margins SumMargins(const FrequencyTable& table) {
  Margins margins;
  margins.row.resize(static_cast<std::size_t>(table.rows));
  margins.column.resize(static_cast<std::size_t>(table.columns));
  for (int a = 0; a < table.rows; ++a) {
    for (int b = 0; b < table.columns; ++b) {
      margins.row[static_cast<std::size_t>(a)] += table.At(a, b);
      margins.column[static_cast<std::size_t>(b)] += table.At(a, b);
      margins.n += table.At(a, b);
    }
  }
  const auto filled = [](const std::vector<double>& m) {
    return static_cast<int>(std::count_if(m.begin(), m.end(), [](double f) { return f > 0; }));
  };
  margins.rows = filled(margins.row);
  margins.columns = filled(margins.column);
  return margins;
}

EStatus Check(const FrequencyTable& table, const Margins& margins) {
  const bool fine = std::all_of(table.count.begin(), table.count.end(),
                                [](double f) { return std::isfinite(f) && f >= 0; });
  if (!fine || !std::isfinite(margins.n)) return EStatus::NotFinite;
  if (margins.n == 0) return EStatus::ZeroWeights;
  return margins.rows < 2 || margins.columns < 2 ? EStatus::OneCategory : EStatus::Ok;
}

// Both statistics against expected frequencies of the cells in rows and columns that have cases.
template <class Expected>
void Compare(const FrequencyTable& table, const Margins& margins, const Expected& expected,
             TableTest& test) {
  for (int a = 0; a < table.rows; ++a) {
    for (int b = 0; b < table.columns; ++b) {
      if (margins.row[static_cast<std::size_t>(a)] == 0 ||
          margins.column[static_cast<std::size_t>(b)] == 0)
        continue;
      const double f = table.At(a, b), e = expected(a, b);
      if (f > 0) test.likelihoodRatio += 2 * f * std::log(f / e);
      if (e > 0) test.pearson += (f - e) * (f - e) / e;
    }
  }
  // Rounding may leave a perfect fit a little below zero.
  test.likelihoodRatio = std::max(0.0, test.likelihoodRatio);
  test.pLikelihoodRatio = ChiSquareUpper(test.likelihoodRatio, test.df);
  test.pPearson = ChiSquareUpper(test.pearson, test.df);
}

}  // namespace

TableTest TestUnderlyingNormality(const FrequencyTable& table,
                                  const std::vector<double>& rowThresholds,
                                  const std::vector<double>& columnThresholds, double r) {
  TableTest test;
  const Margins margins = SumMargins(table);
  test.status = Check(table, margins);
  if (test.status != EStatus::Ok) return test;
  if (!(std::fabs(r) < 1) || static_cast<int>(rowThresholds.size()) != table.rows - 1 ||
      static_cast<int>(columnThresholds.size()) != table.columns - 1) {
    test.status = EStatus::BadArgument;
    return test;
  }
  const int df = margins.rows * margins.columns - margins.rows - margins.columns;
  if (df <= 0) {
    test.status = EStatus::TooFewCases;
    return test;
  }
  CCellModel model(rowThresholds, columnThresholds);
  model.Evaluate(r);
  if (!model.Likelihood(table, margins.n).valid) {
    test.status = EStatus::BadArgument;
    return test;
  }
  test.df = df;
  Compare(
      table, margins,
      [&](int a, int b) { return margins.n * std::max(0.0, model.Probability(a, b)); }, test);
  test.rmsea = std::sqrt(std::max(0.0, (test.likelihoodRatio - df) / (margins.n * df)));
  return test;
}

TableTest TestIndependence(const FrequencyTable& table) {
  TableTest test;
  const Margins margins = SumMargins(table);
  test.status = Check(table, margins);
  if (test.status != EStatus::Ok) return test;
  test.df = (margins.rows - 1) * (margins.columns - 1);
  Compare(
      table, margins,
      [&](int a, int b) {
        return margins.row[static_cast<std::size_t>(a)] *
               margins.column[static_cast<std::size_t>(b)] / margins.n;
      },
      test);
  return test;
}

std::vector<double> CellProbabilities(const std::vector<double>& rowThresholds,
                                      const std::vector<double>& columnThresholds, double r) {
  CCellModel model(rowThresholds, columnThresholds);
  model.Evaluate(r);
  std::vector<double> cells;
  for (int a = 0; a < model.Rows(); ++a) {
    for (int b = 0; b < model.Columns(); ++b)
      cells.push_back(std::max(0.0, model.Probability(a, b)));
  }
  return cells;
}

}  // namespace stats
