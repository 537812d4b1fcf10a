#include "engine/stats/Censored.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "engine/stats/Distributions.h"

namespace stats {

namespace {

// Log-likelihood and its derivatives in b = mean / sd and h = 1 / sd.
struct Likelihood {
  double value = 0;
  double b = 0, h = 0;            // gradient
  double bb = 0, bh = 0, hh = 0;  // second derivatives

  double Determinant() const { return bb * hh - bh * bh; }
};

// Adds `frequency` times log NormalCdf(z), z having the derivatives zb and zh.
void AddTail(Likelihood& sums, double frequency, double z, double zb, double zh) {
  if (frequency == 0) return;
  const double slope = InverseMills(z);
  const double curve = -slope * (slope + z);
  sums.value += frequency * LogNormalCdf(z);
  sums.b += frequency * slope * zb;
  sums.h += frequency * slope * zh;
  sums.bb += frequency * curve * zb * zb;
  sums.bh += frequency * curve * zb * zh;
  sums.hh += frequency * curve * zh * zh;
}

Likelihood Evaluate(const CensoredSums& s, double b, double h) {
  const double z = h * s.mean - b;
  Likelihood sums;
  sums.value = s.n * (std::log(h) - 0.5 * std::log(2 * std::numbers::pi)) -
               0.5 * s.n * (z * z + h * h * s.m2);
  sums.b = s.n * z;
  sums.h = s.n * (1 / h - z * s.mean - h * s.m2);
  sums.bb = -s.n;
  sums.bh = s.n * s.mean;
  sums.hh = -s.n * (1 / (h * h) + s.mean * s.mean + s.m2);
  AddTail(sums, s.below, h * s.lower - b, -1, s.lower);
  AddTail(sums, s.above, b - h * s.upper, 1, -s.upper);
  return sums;
}

EStatus CheckSums(const CensoredSums& s) {
  for (const double x : {s.below, s.lower, s.above, s.upper, s.n, s.mean, s.m2}) {
    if (!std::isfinite(x)) return EStatus::NotFinite;
  }
  if (s.below < 0 || s.above < 0 || s.n < 0 || s.m2 < 0) return EStatus::BadArgument;
  const double all = s.below + s.above + s.n;
  if (all == 0) return EStatus::ZeroWeights;
  if (s.n == 0 || !(all > 1)) return EStatus::TooFewCases;
  if ((s.below > 0 && !(s.lower < s.mean)) || (s.above > 0 && !(s.upper > s.mean)))
    return EStatus::BadArgument;
  if (s.m2 == 0 && s.below + s.above == 0) return EStatus::Constant;
  return EStatus::Ok;
}

// The same sums with center 0 and unit spread, so that neither offset nor scale matters.
CensoredSums Standardise(const CensoredSums& s, double center, double scale) {
  CensoredSums t = s;
  t.lower = s.below > 0 ? (s.lower - center) / scale : 0;
  t.upper = s.above > 0 ? (s.upper - center) / scale : 0;
  t.mean = (s.mean - center) / scale;
  t.m2 = s.m2 / (scale * scale);
  return t;
}

// The largest distance from the uncensored mean that the data show.
double SpreadOf(const CensoredSums& s) {
  double spread = std::sqrt(s.m2);
  if (s.below > 0) spread = std::max(spread, s.mean - s.lower);
  if (s.above > 0) spread = std::max(spread, s.upper - s.mean);
  return spread;
}

// Newton with halved steps: the likelihood is concave, so that each step can be made to go up.
bool Maximise(const CensoredSums& s, double& b, double& h, int& iterations) {
  Likelihood at = Evaluate(s, b, h);
  for (iterations = 1; iterations <= 200; ++iterations) {
    const double determinant = at.Determinant();
    if (!(determinant > 0)) return false;
    double stepB = -(at.hh * at.b - at.bh * at.h) / determinant;
    double stepH = -(at.bb * at.h - at.bh * at.b) / determinant;
    const double rise = at.b * stepB + at.h * stepH;  // twice the expected gain
    Likelihood next;
    for (int halvings = 0;; ++halvings) {
      if (halvings > 60) return rise <= 1e-12 * (1 + std::fabs(at.value));
      if (h + stepH > 0) {
        next = Evaluate(s, b + stepB, h + stepH);
        if (next.value >= at.value - 1e-13 * std::fabs(at.value)) break;
      }
      stepB /= 2;
      stepH /= 2;
    }
    b += stepB;
    h += stepH;
    at = next;
    if (std::fabs(stepB) <= 1e-14 * (1 + std::fabs(b)) && std::fabs(stepH) <= 1e-14 * h)
      return true;
  }
  // Rounding keeps the steps from vanishing altogether; the gradient then decides.
  return std::hypot(at.b, at.h * h) <= 1e-10 * (s.n + s.below + s.above);
}

}  // namespace

CensoredSums SumsAtRange(const UnivariateResult& variable, ECensoring censoring) {
  CensoredSums s;
  const bool usable = variable.status == EStatus::Ok;
  if (usable && censoring != ECensoring::Above) {
    s.below = variable.minimumFrequency;
    s.lower = variable.minimum;
  }
  if (usable && censoring != ECensoring::Below) {
    s.above = variable.maximumFrequency;
    s.upper = variable.maximum;
  }
  if (!usable) {
    s.n = variable.n;
    s.mean = variable.mean;
    return s;
  }
  // What is left when the cases at the limits are taken out of the sums.
  const double low = s.lower - variable.mean, high = s.upper - variable.mean;
  s.n = std::max(0.0, variable.n - s.below - s.above);
  if (s.n == 0) return s;
  const double shift = -(s.below * low + s.above * high) / s.n;
  s.mean = variable.mean + shift;
  const double squares = variable.n * variable.m2 - s.below * low * low - s.above * high * high;
  s.m2 = std::max(0.0, squares / s.n - shift * shift);
  return s;
}

CensoredResult EstimateCensored(const CensoredSums& sums) {
  CensoredResult result;
  result.n = sums.n + sums.below + sums.above;
  result.below = sums.below;
  result.above = sums.above;
  result.status = CheckSums(sums);
  if (result.status != EStatus::Ok) {
    if (result.status == EStatus::NotFinite) result.n = result.below = result.above = 0;
    return result;
  }
  const double scale = SpreadOf(sums);
  const CensoredSums s = Standardise(sums, sums.mean, scale);
  double b = 0, h = 1;
  if (!Maximise(s, b, h, result.iterations)) {
    result.status = EStatus::NotConverged;
    return result;
  }
  const Likelihood at = Evaluate(s, b, h);
  const double determinant = at.Determinant();
  const double varB = -at.hh / determinant, varH = -at.bb / determinant, cov = at.bh / determinant;
  const double mean = b / h, sd = 1 / h;
  result.mean = sums.mean + scale * mean;
  result.sd = scale * sd;
  result.seMean = scale * sd * std::sqrt(std::max(0.0, varB - 2 * mean * cov + mean * mean * varH));
  result.seSd = scale * sd * sd * std::sqrt(varH);
  result.logLikelihood = at.value - sums.n * std::log(scale);
  return result;
}

}  // namespace stats
