// Scores of the cells of a two-way table, and how thresholds change their mean.
#pragma once

#include <vector>

#include "engine/stats/CellModel.h"

namespace stats {

// The score of a cell is the derivative of the log of its probability by the correlation. Cells
// without cases have none. `n` is what shares are taken of: the table's cases, or more.
class CCellScores {
 public:
  // Both must outlive this; the model is evaluated.
  CCellScores(const FrequencyTable& table, const CCellModel& model, double n)
      : table_(table), model_(model), n_(n) {}

  double Score(int row, int column) const {
    return table_.At(row, column) > 0 ? model_.Slope(row, column) / model_.Probability(row, column)
                                      : 0.0;
  }

  // Derivatives of the mean score by the thresholds.
  std::vector<double> ByRowThresholds() const;
  std::vector<double> ByColumnThresholds() const;

 private:
  double Change(int row, int column, double probability, double slope) const;

  const FrequencyTable& table_;
  const CCellModel& model_;
  double n_;
};

}  // namespace stats
