#include "engine/stats/CellModel.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <boost/math/quadrature/tanh_sinh.hpp>

#include "engine/stats/Distributions.h"

namespace stats {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// When less than this part of the product of the margins is left, too many digits are lost.
constexpr double kCancelled = 1e-6;

// The normal density underflows beyond.
constexpr double kFarOut = 38;

std::vector<double> Edges(const std::vector<double>& thresholds) {
  std::vector<double> edges{-kInfinity};
  edges.insert(edges.end(), thresholds.begin(), thresholds.end());
  edges.push_back(kInfinity);
  return edges;
}

std::vector<double> Shares(const std::vector<double>& edges) {
  std::vector<double> shares;
  for (std::size_t a = 0; a + 1 < edges.size(); ++a)
    shares.push_back(NormalInterval(edges[a], edges[a + 1]));
  return shares;
}

}  // namespace

CCellModel::CCellModel(const std::vector<double>& rowThresholds,
                       const std::vector<double>& columnThresholds)
    : rows_(static_cast<int>(rowThresholds.size()) + 1),
      columns_(static_cast<int>(columnThresholds.size()) + 1),
      rowEdges_(Edges(rowThresholds)),
      columnEdges_(Edges(columnThresholds)),
      rowShare_(Shares(rowEdges_)),
      columnShare_(Shares(columnEdges_)) {
  // The corners at infinity have no excess and no density: they stay 0.
  const auto corners = CellIndex(rows_ + 1, columns_ + 1, 0);
  for (Grid* grid : {&cornerExcess_, &cornerSlope_, &cornerCurve_}) grid->assign(corners, 0.0);
  const auto cells = CellIndex(rows_, columns_, 0);
  for (Grid* grid : {&excess_, &slope_, &curve_}) grid->assign(cells, 0.0);
}

void CCellModel::SetCorners() {
  for (int a = 1; a < rows_; ++a) {
    for (int b = 1; b < columns_; ++b) {
      const double x = rowEdges_[static_cast<std::size_t>(a)];
      const double y = columnEdges_[static_cast<std::size_t>(b)];
      const auto at = CellIndex(a, columns_ + 1, b);
      const DensityAndSlope density = BivariateNormalDensitySlope(x, y, r_);
      cornerExcess_[at] = quadrature_.Excess(x, y);
      cornerSlope_[at] = density.density;
      cornerCurve_[at] = density.byCorrelation;
    }
  }
}

void CCellModel::Difference(const Grid& corners, Grid& cells) const {
  const int width = columns_ + 1;
  for (int a = 0; a < rows_; ++a) {
    const double* low = corners.data() + CellIndex(a, width, 0);
    const double* high = low + width;
    for (int b = 0; b < columns_; ++b)
      cells[CellIndex(a, columns_, b)] = (high[b + 1] - high[b]) - (low[b + 1] - low[b]);
  }
}

void CCellModel::Evaluate(double r) {
  r_ = r;
  quadrature_.Reset(r);
  SetCorners();
  Difference(cornerExcess_, excess_);
  Difference(cornerSlope_, slope_);
  Difference(cornerCurve_, curve_);
}

double CCellModel::Probability(int row, int column) const {
  const double product =
      rowShare_[static_cast<std::size_t>(row)] * columnShare_[static_cast<std::size_t>(column)];
  const double probability = product + At(excess_, row, column);
  if (probability > kCancelled * product || product == 0) return probability;
  return Integrate(row, column);
}

// The density of the row variable times the share of the column's interval given it.
double CCellModel::Integrate(int row, int column) const {
  const auto a = static_cast<std::size_t>(row), b = static_cast<std::size_t>(column);
  const double low = std::max(rowEdges_[a], -kFarOut), high = std::min(rowEdges_[a + 1], kFarOut);
  if (!(low < high)) return 0;
  const double spread = std::sqrt((1 - r_) * (1 + r_));
  const auto integrand = [&](double x) {
    return NormalDensity(x) * NormalInterval((columnEdges_[b] - r_ * x) / spread,
                                             (columnEdges_[b + 1] - r_ * x) / spread);
  };
  static thread_local boost::math::quadrature::tanh_sinh<double> integrator;
  return std::max(0.0, integrator.integrate(integrand, low, high, 1e-10));
}

// A cell without cases still counts in the expectation, unless its probability is lost in rounding.
void CCellModel::AddInformation(int row, int column, CorrelationLikelihood& sums) const {
  const double product =
      rowShare_[static_cast<std::size_t>(row)] * columnShare_[static_cast<std::size_t>(column)];
  const double p = product + At(excess_, row, column);
  if (p > kCancelled * product) sums.information += Slope(row, column) * Slope(row, column) / p;
}

CorrelationLikelihood CCellModel::Likelihood(const FrequencyTable& table, double n) const {
  CorrelationLikelihood sums;
  for (int a = 0; a < rows_; ++a) {
    for (int b = 0; b < columns_; ++b) {
      const double share = table.At(a, b) / n;
      if (share == 0) {
        AddInformation(a, b, sums);
        continue;
      }
      const double p = Probability(a, b);
      if (!(p > std::numeric_limits<double>::min())) {
        sums.valid = false;
        return sums;
      }
      const double slope = Slope(a, b) / p;
      sums.value += share * std::log(p);
      sums.slope += share * slope;
      sums.information += slope * slope * p;
      sums.curve += share * (Curve(a, b) / p - slope * slope);
    }
  }
  return sums;
}

// d/dx of P(X < x, Y < y) is density(x) NormalCdf(u) with u = (y - r x) / sqrt(1 - r^2), and d/dx
// of the bivariate density is -(x - r y) / (1 - r^2) times it.
CCellModel::ByThreshold CCellModel::Derive(double x, const std::vector<double>& edges, double r) {
  ByThreshold result;
  const double q = (1 - r) * (1 + r);
  const double spread = std::sqrt(q);
  const double density = NormalDensity(x);
  const auto slopeAt = [&](double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return 0.0;
    return -(x - r * y) / q * BivariateNormalDensity(x, y, r);
  };
  for (std::size_t b = 0; b + 1 < edges.size(); ++b) {
    const bool finite = std::isfinite(x);
    result.probability.push_back(finite ? density * NormalInterval((edges[b] - r * x) / spread,
                                                                   (edges[b + 1] - r * x) / spread)
                                        : 0.0);
    result.slope.push_back(slopeAt(edges[b + 1]) - slopeAt(edges[b]));
  }
  return result;
}

CCellModel::ByThreshold CCellModel::ByRowThreshold(int a) const {
  return Derive(rowEdges_[static_cast<std::size_t>(a) + 1], columnEdges_, r_);
}

CCellModel::ByThreshold CCellModel::ByColumnThreshold(int b) const {
  return Derive(columnEdges_[static_cast<std::size_t>(b) + 1], rowEdges_, r_);
}

}  // namespace stats
