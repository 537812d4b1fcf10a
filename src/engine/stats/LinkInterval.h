// The likelihood of an ordinal answer: the logarithm of the probability of an interval, with its
// derivatives.
#pragma once

#include <cmath>

#include "engine/stats/Distributions.h"

namespace stats {

// log F of an interval of the link's distribution, with derivatives by its ends.
struct Interval {
  double value = 0;
  double upper = 0, lower = 0;
  double upperCurve = 0, lowerCurve = 0, mixed = 0;
};

struct ProbitLink {
  static double Density(double z) { return NormalDensity(z); }
  static double DensitySlope(double z, double density) { return -z * density; }
  static double Probability(double lower, double upper) { return NormalInterval(lower, upper); }
  // log F, with two derivatives.
  static void Below(double z, double& value, double& slope, double& curve) {
    const LogCdfAndMills at = NormalLogCdfAndMills(z);
    value = at.logCdf;
    slope = at.mills;
    curve = -slope * (slope + z);
  }
  static double Quantile(double p) { return NormalQuantile(p); }
};

struct LogisticLink {
  static double Cdf(double z) {
    return z >= 0 ? 1 / (1 + std::exp(-z)) : std::exp(z) / (1 + std::exp(z));
  }
  static double Density(double z) { return Cdf(z) * Cdf(-z); }
  static double DensitySlope(double z, double density) { return density * (Cdf(-z) - Cdf(z)); }
  static double Probability(double lower, double upper) {
    return lower > 0 ? Cdf(-lower) - Cdf(-upper) : Cdf(upper) - Cdf(lower);
  }
  static void Below(double z, double& value, double& slope, double& curve) {
    const double small = std::exp(-std::fabs(z));
    const double sum = 1 + small;
    value = (z < 0 ? z : 0) - std::log1p(small);
    slope = (z < 0 ? 1 : small) / sum;
    curve = -small / (sum * sum);
  }
  static double Quantile(double p) { return std::log(p / (1 - p)); }
};

template <typename Link>
Interval IntervalAt(const double* lower, const double* upper) {
  Interval interval;
  if (lower == nullptr) {
    Link::Below(*upper, interval.value, interval.upper, interval.upperCurve);
    return interval;
  }
  if (upper == nullptr) {  // F is symmetric
    Link::Below(-*lower, interval.value, interval.lower, interval.lowerCurve);
    interval.lower = -interval.lower;
    return interval;
  }
  const double p = Link::Probability(*lower, *upper);
  interval.value = std::log(p);
  const double atUpper = Link::Density(*upper);
  const double atLower = Link::Density(*lower);
  interval.upper = atUpper / p;
  interval.lower = -atLower / p;
  interval.upperCurve = Link::DensitySlope(*upper, atUpper) / p - interval.upper * interval.upper;
  interval.lowerCurve = -Link::DensitySlope(*lower, atLower) / p - interval.lower * interval.lower;
  interval.mixed = -interval.upper * interval.lower;
  return interval;
}

}  // namespace stats
