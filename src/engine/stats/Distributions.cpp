#include "engine/stats/Distributions.h"

#include <cmath>
#include <limits>
#include <numbers>

#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>

namespace stats {

namespace {

namespace policies = boost::math::policies;

// Out of range gives the limit, not an exception.
using Quiet = policies::policy<policies::domain_error<policies::ignore_error>,
                               policies::pole_error<policies::ignore_error>,
                               policies::overflow_error<policies::ignore_error>,
                               policies::underflow_error<policies::ignore_error>,
                               policies::evaluation_error<policies::ignore_error>>;

constexpr double kAsNormal = 1e12;  // degrees of freedom
constexpr double kInverseRootTwoPi = 0.39894228040143267794;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Below this the tail's asymptotic series is exact to double precision.
constexpr double kFarTail = -30;

// NormalCdf(x) |x| / density(x) for x below kFarTail.
double TailFactor(double x) {
  const double q = 1 / (x * x);
  return 1 - q * (1 - q * (3 - q * (15 - q * 105)));
}

}  // namespace

double NormalDensity(double x) {
  return kInverseRootTwoPi * std::exp(-0.5 * x * x);
}

double NormalCdf(double x) {
  return 0.5 * std::erfc(-x * (std::numbers::sqrt2 / 2));
}

double NormalUpper(double x) {
  return NormalCdf(-x);
}

double NormalInterval(double lower, double upper) {
  if (!(lower < upper)) return 0;
  if (lower > 0) return NormalUpper(lower) - NormalUpper(upper);
  return NormalCdf(upper) - NormalCdf(lower);
}

double NormalQuantile(double p) {
  if (p <= 0) return -kInfinity;
  if (p >= 1) return kInfinity;
  return -std::numbers::sqrt2 * boost::math::erfc_inv(2 * p, Quiet());
}

double NormalTwoSided(double z) {
  return std::erfc(std::fabs(z) * (std::numbers::sqrt2 / 2));
}

double ChiSquareUpper(double x, double df) {
  if (x <= 0 || df <= 0) return 1;
  if (std::isinf(x)) return 0;
  return boost::math::gamma_q(df / 2, x / 2, Quiet());
}

double StudentTwoSided(double t, double df) {
  if (df <= 0) return 1;
  if (df > kAsNormal) return NormalTwoSided(t);
  if (std::isinf(t)) return 0;
  // The smaller of the two arguments keeps its digits.
  const double square = t * t;
  return square > df ? boost::math::ibeta(df / 2, 0.5, df / (df + square), Quiet())
                     : boost::math::ibetac(0.5, df / 2, square / (df + square), Quiet());
}

double StudentQuantile(double p, double df) {
  if (df > kAsNormal) return NormalQuantile(p);
  if (p < 0.5) return -StudentQuantile(1 - p, df);
  double upper = 0;
  const double lower = boost::math::ibeta_inv(df / 2, 0.5, 2 * (1 - p), &upper, Quiet());
  return std::sqrt(df * upper / lower);
}

double FUpper(double f, double df1, double df2) {
  if (!(f > 0) || df1 <= 0 || df2 <= 0) return 1;
  if (std::isinf(f)) return 0;
  return df1 * f > df2 ? boost::math::ibeta(df2 / 2, df1 / 2, df2 / (df2 + df1 * f), Quiet())
                       : boost::math::ibetac(df1 / 2, df2 / 2, df1 * f / (df2 + df1 * f), Quiet());
}

double LogNormalCdf(double x) {
  if (x >= kFarTail) return std::log(NormalCdf(x));
  return std::log(kInverseRootTwoPi) - 0.5 * x * x - std::log(-x) + std::log(TailFactor(x));
}

double InverseMills(double x) {
  if (x >= kFarTail) return NormalDensity(x) / NormalCdf(x);
  return -x / TailFactor(x);
}

LogCdfAndMills NormalLogCdfAndMills(double x) {
  if (!(x >= kFarTail)) return {LogNormalCdf(x), InverseMills(x)};
  const double below = NormalCdf(x);
  return {std::log(below), NormalDensity(x) / below};
}

}  // namespace stats
