#include "engine/stats/BivariateNormal.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include <boost/math/quadrature/gauss.hpp>

#include "engine/stats/Distributions.h"

namespace stats {

namespace {

using std::numbers::pi;

// Up to this angle (a correlation of .707) one piece is enough.
constexpr double kFirstPiece = pi / 4;

// A piece from 0 up to these angles needs fewer nodes: 8, 12 or else 20.
constexpr double kFewNodes = 0.25;
constexpr double kSomeNodes = 0.5;

// Beyond this exponent a term is below 1e-304.
constexpr double kLargestExponent = 700;

bool BothFinite(double x, double y) {
  return std::isfinite(x) && std::isfinite(y);
}

// |r| = 1: the variables are equal or opposite.
double DegenerateCdf(double x, double y, double r) {
  if (r > 0) return NormalCdf(std::min(x, y));
  return NormalInterval(-y, x);
}

}  // namespace

void CCorrelationQuadrature::AddPiece(double begin, double end) {
  const auto add = [&](const auto& abscissas, const auto& weights) {
    const double middle = (begin + end) / 2, half = (end - begin) / 2;
    for (std::size_t i = 0; i < abscissas.size(); ++i) {
      for (const double side : {-1.0, 1.0}) {
        if (side > 0 && abscissas[i] == 0) continue;
        const double angle = middle + side * half * abscissas[i];
        // The cosine from the complement: near the right angle it is small.
        const double cosine = std::sin(pi / 2 - std::fabs(angle));
        nodes_.push_back({std::sin(angle), 0.5 / (cosine * cosine), half * weights[i] / (2 * pi)});
      }
    }
  };
  using Few = boost::math::quadrature::gauss<double, 8>;
  using Some = boost::math::quadrature::gauss<double, 12>;
  using Many = boost::math::quadrature::gauss<double, 20>;
  const double reach = std::fabs(end);
  if (reach <= kFewNodes) {
    add(Few::abscissa(), Few::weights());
  } else if (reach <= kSomeNodes) {
    add(Some::abscissa(), Some::weights());
  } else {
    add(Many::abscissa(), Many::weights());
  }
}

void CCorrelationQuadrature::Reset(double r) {
  nodes_.clear();
  if (r == 0) return;
  const double sign = r > 0 ? 1 : -1;
  const double end = std::asin(std::fabs(r));
  double begin = 0;
  double cut = kFirstPiece;
  while (begin < end) {
    const double next = std::min(cut, end);
    AddPiece(sign * begin, sign * next);
    begin = next;
    cut = (cut + pi / 2) / 2;
  }
}

double CCorrelationQuadrature::Excess(double x, double y) const {
  if (!BothFinite(x, y)) return 0;
  double sum = 0;
  const double squares = x * x + y * y, product = 2 * x * y;
  for (const Node& node : nodes_) {
    sum += node.weight * std::exp(-(squares - product * node.sine) * node.scale);
  }
  return sum;
}

void CCorrelationQuadrature::ExcessGrid(const double* x, int nx, const double* y, int ny,
                                        double* excess) const {
  for (int a = 0; a < nx; ++a) {
    for (int b = 0; b < ny; ++b) excess[a * ny + b] = Excess(x[a], y[b]);
  }
}

double BivariateNormalCdf(double x, double y, double r) {
  if (std::isnan(x) || std::isnan(y) || std::isnan(r))
    return std::numeric_limits<double>::quiet_NaN();
  if (r >= 1 || r <= -1) return DegenerateCdf(x, y, r);
  if (!BothFinite(x, y)) return NormalCdf(x) * NormalCdf(y);
  const CCorrelationQuadrature quadrature(r);
  return std::clamp(NormalCdf(x) * NormalCdf(y) + quadrature.Excess(x, y), 0.0, 1.0);
}

double BivariateNormalDensity(double x, double y, double r) {
  return BivariateNormalDensitySlope(x, y, r).density;
}

DensityAndSlope BivariateNormalDensitySlope(double x, double y, double r) {
  if (!BothFinite(x, y) || !(std::fabs(r) < 1)) return {};
  const double q = (1 - r) * (1 + r);
  // x^2 - 2 r x y + y^2 as a sum of squares: no cancellation for |r| near 1.
  const double away = y - r * x;
  const double exponent = 0.5 * (x * x + away * away / q);
  if (exponent > kLargestExponent) return {};
  const double density = std::exp(-exponent) / (2 * pi * std::sqrt(q));
  const double form = x * x + away * away / q;  // quadratic form divided by q
  return {density, density * (r * (1 - form) + x * y) / q};
}

}  // namespace stats
