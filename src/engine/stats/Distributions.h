// Distribution functions that never throw and never give NaN for an argument that is no NaN.
#pragma once

namespace stats {

double NormalDensity(double x);
double NormalCdf(double x);  // P(X < x), accurate to a few units in the last place, tails included
double NormalUpper(double x);  // P(X > x), likewise

// P(lower < X < upper), without cancellation in either tail; 0 when lower is not below upper.
double NormalInterval(double lower, double upper);

// The x with NormalCdf(x) = p; minus and plus infinity at and beyond 0 and 1.
double NormalQuantile(double p);

// P(|X| > |z|)
double NormalTwoSided(double z);

// P(chi-square with df degrees of freedom > x); 1 for x at or below 0 and for df at or below 0.
double ChiSquareUpper(double x, double df);

// P(|T| > |t|) for Student's t with df degrees of freedom (infinite: the normal distribution), and
// P(F > f); 1 for degrees of freedom at or below 0.
double StudentTwoSided(double t, double df);
double FUpper(double f, double df1, double df2);
// The t that Student's t with df > 0 degrees of freedom is below with probability p.
double StudentQuantile(double p, double df);

// log NormalCdf(x), finite for every finite x, and its derivative density(x) / NormalCdf(x).
double LogNormalCdf(double x);
double InverseMills(double x);

// The two together.
struct LogCdfAndMills {
  double logCdf, mills;
};
LogCdfAndMills NormalLogCdfAndMills(double x);

}  // namespace stats
