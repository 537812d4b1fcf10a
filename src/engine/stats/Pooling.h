// Estimates from several completed data sets as one.
#pragma once

#include <vector>

namespace stats {

// Rubin's rules (D. B. Rubin, Multiple Imputation for Nonresponse in Surveys, 1987, chapter 3): the
// mean of the estimates; total variance = within + (1 + 1/m) between. Degrees of freedom with the
// correction for small samples of J. Barnard and D. B. Rubin (Biometrika 86, 1999, 948-955) where
// those of the complete data are finite.
struct PooledEstimate {
  double value = 0;
  double error = 0;               // root of the total variance
  double within = 0;              // mean of the squared standard errors
  double between = 0;             // variance of the estimates, divisor m - 1
  double df = 0;                  // of t; infinite where the estimates do not differ
  double increase = 0;            // relative increase of the variance for the missing values
  double missingInformation = 0;  // share of it: (increase + 2 / (df + 3)) / (increase + 1)
  double t = 0, p = 1;            // of the estimate against 0
  double low = 0, high = 0;       // of the interval with the given confidence
};

// At least one estimate, as many errors; `completeDf` may be infinite. With one estimate, or where
// the errors are 0, there is nothing between or within.
PooledEstimate PoolEstimates(const std::vector<double>& values, const std::vector<double>& errors,
                             double completeDf, double confidence = 0.95);

}  // namespace stats
