// Tests of univariate normality by skewness and kurtosis.
#pragma once

#include "engine/stats/Status.h"
#include "engine/stats/Univariate.h"

namespace stats {

// zSkewness: R. B. D'Agostino, Biometrika 57, 1970, 679-681 (Johnson's SU approximation).
// zKurtosis: F. J. Anscombe and W. J. Glynn, Biometrika 70, 1983, 227-234.
// Both use g1 and g2 (divisor n). chiSquare is the sum of their squares, with 2 degrees of freedom
// (R. B. D'Agostino and E. S. Pearson, Biometrika 60, 1973, 613-622). p values are two-sided.
// Status: that of the variable; TooFewCases for n below 8, where the approximation of the
// skewness is not defined.
struct NormalityTest {
  EStatus status = EStatus::TooFewCases;
  double zSkewness = 0, pSkewness = 1;
  double zKurtosis = 0, pKurtosis = 1;
  double chiSquare = 0, pChiSquare = 1;
};

NormalityTest TestNormality(const UnivariateResult& variable);

}  // namespace stats
