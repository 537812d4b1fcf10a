// Mean and standard deviation of a normal variable that is censored at its smallest or largest
// value.
#pragma once

#include "engine/stats/Status.h"
#include "engine/stats/Univariate.h"

namespace stats {

enum class ECensoring { Below = 1, Above = 2, Both = 3 };

// What the likelihood needs to know. Frequencies are sums of weights.
struct CensoredSums {
  double below = 0, lower = 0;  // frequency of the cases at or below the limit `lower`
  double above = 0, upper = 0;  // frequency of the cases at or above the limit `upper`
  double n = 0;                 // frequency, mean and mean square about the mean (divisor n)
  double mean = 0, m2 = 0;      // of the cases between the limits
};

// A variable's limits are its minimum and maximum, as is usual for scales with a floor or a
// ceiling.
CensoredSums SumsAtRange(const UnivariateResult& variable, ECensoring censoring);

// Maximum likelihood under normality: cases at a limit contribute the probability of the tail, the
// others the density (J. Tobin, Econometrica 26, 1958, 24-36). Newton's method in mean / sd and
// 1 / sd, in which the likelihood is concave (R. J. Olsen, Econometrica 46, 1978, 1211-1215), so
// the maximum is the only one. Standard errors from the observed information. Status: ZeroWeights;
// NotFinite; BadArgument (limits out of order); TooFewCases (no case between the limits: mean and
// sd are then not both determined, or n not above 1); Constant (the cases between the limits are
// all equal and fewer than two pieces of information are left); NotConverged.
struct CensoredResult {
  EStatus status = EStatus::ZeroWeights;
  double n = 0;  // all cases
  double below = 0, above = 0;
  double mean = 0, sd = 0;
  double seMean = 0, seSd = 0;
  double logLikelihood = 0;
  int iterations = 0;
};

CensoredResult EstimateCensored(const CensoredSums& sums);

}  // namespace stats
