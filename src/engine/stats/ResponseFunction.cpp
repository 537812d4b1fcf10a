#include "engine/stats/ResponseFunction.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "engine/stats/Distributions.h"

namespace stats {

namespace {

constexpr double kTablePerUnit = 64;
constexpr double kTableEnd = 37;  // the density is then 1e-298
constexpr double kSmallestProbability = 1e-300;
constexpr double kLargestExponent = 690;

}  // namespace

void ResponseCells::Resize(Eigen::Index size) {
  for (Eigen::ArrayXd* array : {&p, &upper1, &lower1, &upper2, &lower2}) array->resize(size);
}

CResponseFunction::CResponseFunction(ELink link) : link_(link) {
  if (link != ELink::Probit) return;
  for (double at = 0; at <= kTableEnd; at += 1 / kTablePerUnit)
    table_.push_back({NormalCdf(-at), NormalDensity(at)});
}

double CResponseFunction::ResidualVariance() const {
  return link_ == ELink::Probit ? 1 : std::numbers::pi * std::numbers::pi / 3;
}

// The part beyond a distance from 0, and the density there; Taylor series about the next point of
// the table.
CResponseFunction::TailAndDensity CResponseFunction::Normal(double distance) const {
  distance = std::min(distance, kTableEnd);
  const auto at = static_cast<std::size_t>(distance * kTablePerUnit + 0.5);
  const double x = static_cast<double>(at) / kTablePerUnit;
  const double d = distance - x;
  const TailAndDensity& point = table_[at];
  // Hermite polynomials of x
  const double h2 = x * x - 1, h3 = x * (x * x - 3), h4 = x * (h3 - 3 * x) + 3;
  const double h5 = x * h4 - 4 * h3;
  const double density = 1 - d * (x - d / 2 * (h2 - d / 3 * (h3 - d / 4 * (h4 - d / 5 * h5))));
  const double area = d * (1 - d / 2 * (x - d / 3 * (h2 - d / 4 * (h3 - d / 5 * h4))));
  return {point.tail - point.density * area, point.density * density};
}

void CResponseFunction::EvaluateNormal(double lower, double upper, const Eigen::ArrayXd& x,
                                       ResponseCells& cells) const {
  const bool hasLower = std::isfinite(lower), hasUpper = std::isfinite(upper);
  for (Eigen::Index q = 0; q < x.size(); ++q) {
    const double u = upper - x(q), l = lower - x(q);
    const TailAndDensity atU = hasUpper ? Normal(std::fabs(u)) : TailAndDensity{0, 0};
    const TailAndDensity atL = hasLower ? Normal(std::fabs(l)) : TailAndDensity{0, 0};
    double p;
    if (l >= 0) {
      p = atL.tail - atU.tail;
    } else if (u <= 0) {
      p = atU.tail - atL.tail;
    } else {
      p = 1 - atU.tail - atL.tail;
    }
    p = std::max(p, kSmallestProbability);
    const double du = atU.density / p, dl = atL.density / p;
    cells.p(q) = p;
    cells.upper1(q) = du;
    cells.lower1(q) = dl;
    cells.upper2(q) = hasUpper ? -u * du : 0;
    cells.lower2(q) = hasLower ? -l * dl : 0;
  }
}

// With e = exp(x - end), F = 1 / (1 + e); one exponential serves both ends.
void CResponseFunction::EvaluateLogistic(double lower, double upper, const Eigen::ArrayXd& x,
                                         ResponseCells& cells) {
  const bool hasLower = std::isfinite(lower), hasUpper = std::isfinite(upper);
  for (Eigen::Index q = 0; q < x.size(); ++q) {
    const double u = std::clamp(upper - x(q), -kLargestExponent, kLargestExponent);
    const double l = std::clamp(lower - x(q), -kLargestExponent, kLargestExponent);
    const double eu = hasUpper ? std::exp(-u) : 0, el = hasLower ? std::exp(-l) : 0;
    const double fu = 1 / (1 + eu), fl = hasLower ? 1 / (1 + el) : 0;
    // F(u) - F(l) without cancellation: products of F and 1 - F.
    double p = hasLower ? (hasUpper ? (el - eu) * fu * fl : el * fl) : fu;
    p = std::max(p, kSmallestProbability);
    const double du = fu * (eu * fu) / p, dl = hasLower ? fl * (el * fl) / p : 0;
    cells.p(q) = p;
    cells.upper1(q) = du;
    cells.lower1(q) = dl;
    cells.upper2(q) = du * (1 - 2 * fu);
    cells.lower2(q) = dl * (1 - 2 * fl);
  }
}

void CResponseFunction::Evaluate(double lower, double upper, const Eigen::ArrayXd& x,
                                 ResponseCells& cells) const {
  if (link_ == ELink::Probit) {
    EvaluateNormal(lower, upper, x, cells);
  } else {
    EvaluateLogistic(lower, upper, x, cells);
  }
}

}  // namespace stats
