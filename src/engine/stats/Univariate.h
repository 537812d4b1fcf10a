// Mean, spread, shape and range of single variables, from any number of cases in one pass.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/stats/Blocks.h"
#include "engine/stats/Status.h"

namespace stats {

// One variable. With weights, n is the sum of the weights (they count cases), and every sum over
// cases is a weighted one.
//   m_k = sum of w (x - mean)^k / n
//   skewness       g1 = m3 / m2^1.5
//   kurtosis       g2 = m4 / m2^2 - 3, 0 for the normal distribution
//   unbiased under normality: G1 = g1 sqrt(n (n - 1)) / (n - 2),
//                             G2 = (n - 1) ((n + 1) g2 + 6) / ((n - 2) (n - 3))
//   with the variance's divisor n - 1: b1 = m3 / sd^3, b2 = m4 / sd^4 - 3
// (D. N. Joanes and C. A. Gill, The Statistician 47, 1998, 183-189.)
// A value that the cases do not allow is 0, and `status` says why:
//   NoCases, ZeroWeights   everything is 0
//   TooFewCases            n not above 1: there is no standard deviation (and nothing below it)
//   Constant               standard deviation 0: no skewness and kurtosis
//   NotFinite              an infinite cell
// G1 needs n above 2, G2 n above 3; they are 0 below.
struct UnivariateResult {
  EStatus status = EStatus::NoCases;
  std::int64_t cases = 0;    // cases with a value and a weight above zero
  std::int64_t missing = 0;  // cases without a value (under listwise deletion also left-out ones)
  double n = 0;              // sum of the weights of `cases`
  double mean = 0;
  double variance = 0;  // divisor n - 1
  double sd = 0;        // its root
  double m2 = 0, m3 = 0, m4 = 0;
  double g1 = 0, g2 = 0;
  double G1 = 0, G2 = 0;
  double b1 = 0, b2 = 0;
  double minimum = 0, maximum = 0;
  double minimumFrequency = 0, maximumFrequency = 0;  // sums of weights of the cases that have it
};

// Collects the variables of blocks. Cases are taken in segments whose centred sums are merged
// (P. Pebay, Sandia report SAND2008-6212, 2008), so that values with a huge common offset keep
// their digits. Not for several threads at once; uses threads itself, and the result does not
// depend on their number. Memory: a few numbers a variable.
class CUnivariate {
 public:
  CUnivariate(int variables, EDeletion deletion, int threads = 1);
  ~CUnivariate();
  CUnivariate(CUnivariate&&) noexcept;
  CUnivariate& operator=(CUnivariate&&) noexcept;

  // The block has as many variables as the constructor was told (else std::invalid_argument).
  void Add(const CaseBlock& block);
  void Merge(const CUnivariate& other);  // the cases of `other` behind those of this one

  UnivariateResult Result(int variable) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// A single column of `cases` values (NaN: missing), for small tables.
UnivariateResult DescribeColumn(const double* values, std::int64_t cases,
                                const double* weights = nullptr);

}  // namespace stats
