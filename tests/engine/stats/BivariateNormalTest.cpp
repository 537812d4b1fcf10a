#include <cmath>
#include <numbers>

#include <boost/math/quadrature/tanh_sinh.hpp>
#include <gtest/gtest.h>

#include "engine/stats/BivariateNormal.h"
#include "engine/stats/Distributions.h"

namespace {

using stats::BivariateNormalCdf;
using std::numbers::pi;

// Independent of ours: the density of x times the conditional distribution, in extended precision,
// on both sides of the step that the conditional distribution makes for |r| near 1.
long double Reference(long double x, long double y, long double r) {
  const long double spread = std::sqrt((1 - r) * (1 + r));
  const auto integrand = [&](long double u) {
    return std::exp(-u * u / 2) / std::sqrt(2 * std::numbers::pi_v<long double>) *
           std::erfc(-(y - r * u) / spread / std::numbers::sqrt2_v<long double>) / 2;
  };
  boost::math::quadrature::tanh_sinh<long double> integrator(18);
  long double sum = 0, from = -14;
  const long double step = r == 0 ? 0 : y / r, width = 8 * spread;
  for (const long double cut : {step - width, step, step + width, x}) {
    const long double to = std::min(cut, x);
    if (to > from) {
      sum += integrator.integrate(integrand, from, to, 1e-17L);
      from = to;
    }
  }
  return sum;
}

TEST(BivariateNormal, IsExactToTheFifteenthDecimal) {
  for (const double r :
       {-.99999, -.97, -.8, -.5, -.2, 0., .1, .24, .26, .47, .6, .72, .9, .95, .999}) {
    for (const double x : {-6., -2.5, -.3, 0., .7, 3.}) {
      for (const double y : {-3.1, -1., 0., .69, 2.2, 5.}) {
        EXPECT_NEAR(BivariateNormalCdf(x, y, r), static_cast<double>(Reference(x, y, r)), 1.5e-15)
            << x << ' ' << y << ' ' << r;
      }
    }
  }
}

TEST(BivariateNormal, HasTheKnownOrthants) {
  for (const double r : {-.9999999, -.7, -1e-9, 0., .3, .5, std::numbers::sqrt2 / 2, .98, .9999999})
    EXPECT_NEAR(BivariateNormalCdf(0, 0, r), 0.25 + std::asin(r) / (2 * pi), 2e-16) << r;
}

TEST(BivariateNormal, KeepsItsSymmetriesAndEnds) {
  for (const double r : {-.95, -.3, .2, .85}) {
    for (const double x : {-1.7, .4}) {
      for (const double y : {-.6, 2.3}) {
        const double p = BivariateNormalCdf(x, y, r);
        EXPECT_NEAR(p, BivariateNormalCdf(y, x, r), 1e-16);
        EXPECT_NEAR(p + BivariateNormalCdf(x, -y, -r), stats::NormalCdf(x), 2e-16);
      }
    }
  }
  const double inf = HUGE_VAL;
  EXPECT_EQ(BivariateNormalCdf(.4, inf, .5), stats::NormalCdf(.4));
  EXPECT_EQ(BivariateNormalCdf(-inf, 1, .5), 0);
  EXPECT_EQ(BivariateNormalCdf(.4, 1, 1), stats::NormalCdf(.4));
  EXPECT_NEAR(BivariateNormalCdf(.4, -.1, -1), stats::NormalCdf(.4) - stats::NormalCdf(.1), 1e-16);
  EXPECT_EQ(BivariateNormalCdf(-1, .5, -1), 0);
}

TEST(BivariateNormal, ExcessKeepsItsDigitsInTheTails) {
  // Plackett's identity, integrated by other nodes: the small excess in the corner of two tails.
  const stats::CCorrelationQuadrature quadrature(.3);
  boost::math::quadrature::tanh_sinh<double> integrator;
  const double want = integrator.integrate(
      [](double r) { return stats::BivariateNormalDensity(-6, -6.5, r); }, 0., .3, 1e-14);
  EXPECT_NEAR(quadrature.Excess(-6, -6.5) / want, 1, 1e-12);
  EXPECT_LT(want, 1e-10);
}

TEST(BivariateNormal, DerivativesMatchDifferences) {
  constexpr double kStep = 1e-5;
  for (const double r : {-.9, -.2, 0., .6}) {
    const auto d = stats::BivariateNormalDensitySlope(.8, -.3, r);
    const double up = BivariateNormalCdf(.8, -.3, r + kStep);
    const double down = BivariateNormalCdf(.8, -.3, r - kStep);
    EXPECT_NEAR(d.density, (up - down) / (2 * kStep), 1e-8);
    const double densityUp = stats::BivariateNormalDensity(.8, -.3, r + kStep);
    const double densityDown = stats::BivariateNormalDensity(.8, -.3, r - kStep);
    EXPECT_NEAR(d.byCorrelation, (densityUp - densityDown) / (2 * kStep), 1e-6);
  }
}

TEST(Distributions, KeepTheirTails) {
  EXPECT_NEAR(stats::NormalQuantile(stats::NormalCdf(-30)), -30, 1e-12);
  EXPECT_EQ(stats::NormalQuantile(0), -HUGE_VAL);
  EXPECT_EQ(stats::NormalQuantile(1), HUGE_VAL);
  // The change to the series is seamless, and far out the ratio is the asymptotic one.
  EXPECT_NEAR(stats::InverseMills(-30.0000001), stats::InverseMills(-29.9999999), 1e-6);
  EXPECT_NEAR(stats::LogNormalCdf(-30.0000001), stats::LogNormalCdf(-29.9999999), 1e-5);
  EXPECT_NEAR(stats::InverseMills(-1e8), 1e8, 1e-7);
  EXPECT_EQ(stats::ChiSquareUpper(0, 3), 1);
  EXPECT_EQ(stats::ChiSquareUpper(HUGE_VAL, 3), 0);
  EXPECT_NEAR(stats::ChiSquareUpper(2 * std::log(20.), 2), .05, 1e-16);
  EXPECT_NEAR(stats::NormalInterval(20, 21) / stats::NormalInterval(-21, -20), 1, 1e-15);
}

}  // namespace
