#include "engine/stats/NormalityTests.h"

#include <cmath>

#include "engine/stats/Distributions.h"

namespace stats {

namespace {

// The skewness's own kurtosis minus 3, as one quotient: the difference would lose digits for many
// cases.
double SkewnessDeviate(double g1, double n) {
  const double y = g1 * std::sqrt((n + 1) * (n + 3) / (6 * (n - 2)));
  const double excess =
      36 * (((n - 5) * n - 19) * n + 35) / ((n - 2) * (n + 5) * (n + 7) * (n + 9));
  const double w2Minus1 = 2 * excess / (std::sqrt(4 + 2 * excess) + 2);
  const double delta = 1 / std::sqrt(0.5 * std::log1p(w2Minus1));
  const double alpha = std::sqrt(2 / w2Minus1);
  return delta * std::asinh(y / alpha);
}

double KurtosisDeviate(double g2, double n) {
  const double mean = -6 / (n + 1);  // of g2 under normality
  const double variance = 24 * n * (n - 2) * (n - 3) / ((n + 1) * (n + 1) * (n + 3) * (n + 5));
  const double x = (g2 - mean) / std::sqrt(variance);
  const double skew = 6 * (n * n - 5 * n + 2) / ((n + 7) * (n + 9)) *
                      std::sqrt(6 * (n + 3) * (n + 5) / (n * (n - 2) * (n - 3)));
  const double a = 6 + 8 / skew * (2 / skew + std::sqrt(1 + 4 / (skew * skew)));
  const double cube = (1 - 2 / a) / (1 + x * std::sqrt(2 / (a - 4)));
  return (1 - 2 / (9 * a) - std::cbrt(cube)) / std::sqrt(2 / (9 * a));
}

}  // namespace

NormalityTest TestNormality(const UnivariateResult& variable) {
  NormalityTest test;
  test.status = variable.status;
  if (test.status != EStatus::Ok) return test;
  if (variable.n < 8) {
    test.status = EStatus::TooFewCases;
    return test;
  }
  test.zSkewness = SkewnessDeviate(variable.g1, variable.n);
  test.pSkewness = NormalTwoSided(test.zSkewness);
  test.zKurtosis = KurtosisDeviate(variable.g2, variable.n);
  test.pKurtosis = NormalTwoSided(test.zKurtosis);
  test.chiSquare = test.zSkewness * test.zSkewness + test.zKurtosis * test.zKurtosis;
  test.pChiSquare = ChiSquareUpper(test.chiSquare, 2);
  return test;
}

}  // namespace stats
