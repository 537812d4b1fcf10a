#include "engine/stats/CellScores.h"

namespace stats {

// The share of a cell times the derivative of its score, for derivatives of its probability and
// slope.
double CCellScores::Change(int row, int column, double probability, double slope) const {
  if (table_.At(row, column) == 0) return 0;
  const double p = model_.Probability(row, column);
  return table_.At(row, column) / n_ * (slope - model_.Slope(row, column) * probability / p) / p;
}

std::vector<double> CCellScores::ByRowThresholds() const {
  std::vector<double> slopes;
  for (int a = 0; a + 1 < table_.rows; ++a) {
    const CCellModel::ByThreshold by = model_.ByRowThreshold(a);
    double sum = 0;
    for (int b = 0; b < table_.columns; ++b) {
      const auto at = static_cast<std::size_t>(b);
      sum += Change(a, b, by.probability[at], by.slope[at]) +
             Change(a + 1, b, -by.probability[at], -by.slope[at]);
    }
    slopes.push_back(sum);
  }
  return slopes;
}

std::vector<double> CCellScores::ByColumnThresholds() const {
  std::vector<double> slopes;
  for (int b = 0; b + 1 < table_.columns; ++b) {
    const CCellModel::ByThreshold by = model_.ByColumnThreshold(b);
    double sum = 0;
    for (int a = 0; a < table_.rows; ++a) {
      const auto at = static_cast<std::size_t>(a);
      sum += Change(a, b, by.probability[at], by.slope[at]) +
             Change(a, b + 1, -by.probability[at], -by.slope[at]);
    }
    slopes.push_back(sum);
  }
  return slopes;
}

}  // namespace stats
