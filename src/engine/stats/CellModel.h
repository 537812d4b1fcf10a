// Cell probabilities of a two-way table under an underlying bivariate normal distribution, with
// their derivatives by the correlation.
#pragma once

#include <vector>

#include "engine/stats/BivariateNormal.h"
#include "engine/stats/CorrelationSearch.h"
#include "engine/stats/PairTables.h"

namespace stats {

class CCellModel {
 public:
  // Ascending thresholds; infinite ones stand for categories without cases at the ends.
  CCellModel(const std::vector<double>& rowThresholds, const std::vector<double>& columnThresholds);

  int Rows() const { return rows_; }
  int Columns() const { return columns_; }

  // Computes everything below for |r| < 1.
  void Evaluate(double r);

  // Where a probability is a small difference of larger numbers it is integrated over the cell
  // instead, so that it is accurate relative to itself; the call is slow then.
  double Probability(int row, int column) const;
  double Slope(int row, int column) const { return At(slope_, row, column); }
  double Curve(int row, int column) const { return At(curve_, row, column); }

  // Derivatives of Probability and Slope by threshold `a` of the rows, for the cells of row a
  // (those of row a + 1 have the other sign), by column.
  struct ByThreshold {
    std::vector<double> probability, slope;
  };
  ByThreshold ByRowThreshold(int a) const;
  ByThreshold ByColumnThreshold(int b) const;  // likewise, by row

  // Over the cells with cases. `valid` false: such a cell has no probability.
  CorrelationLikelihood Likelihood(const FrequencyTable& table, double n) const;

 private:
  using Grid = std::vector<double>;  // (rows_ + 1) by (columns_ + 1) corners, or rows_ by columns_
  double At(const Grid& grid, int row, int column) const {
    return grid[CellIndex(row, columns_, column)];
  }
  void AddInformation(int row, int column, CorrelationLikelihood& sums) const;
  void SetCorners();
  void Difference(const Grid& corners, Grid& cells) const;
  double Integrate(int row, int column) const;
  static ByThreshold Derive(double at, const std::vector<double>& others, double r);

  int rows_, columns_;
  std::vector<double> rowEdges_, columnEdges_;  // with the infinite ends
  std::vector<double> rowShare_, columnShare_;  // marginal probabilities
  double r_ = 0;
  CCorrelationQuadrature quadrature_;
  Grid cornerExcess_, cornerSlope_, cornerCurve_;
  Grid excess_, slope_, curve_;
};

}  // namespace stats
