// Multivariate normality by skewness and kurtosis.
#pragma once

#include <cstdint>
#include <memory>

#include <Eigen/Core>

#include "engine/stats/Blocks.h"
#include "engine/stats/Moments.h"
#include "engine/stats/Status.h"

namespace stats {

// K. V. Mardia, Biometrika 57, 1970, 519-530, with the covariance matrix of divisor n:
//   skewness  b1 = mean over all pairs of cases of d(i, k)^3, d the scaled inner product;
//             n b1 / 6 is chi-square with p (p + 1) (p + 2) / 6 degrees of freedom;
//             smallSample = n k b1 / 6, k = (p + 1) (n + 1) (n + 3) / (n ((n + 1) (p + 1) - 6))
//             (K. V. Mardia, Sankhya B 36, 1974, 115-128)
//   kurtosis  b2 = mean of d(i, i)^2; z = (b2 - p (p + 2)) / sqrt(8 p (p + 2) / n)
//   relative kurtosis = b2 / (p (p + 2))
//   joint     zSkewness^2 + zKurtosis^2 with 2 degrees of freedom, zSkewness the normal deviate
//             of the skewness's chi-square by the cube-root transformation (E. B. Wilson and M. M.
//             Hilferty, Proc. Nat. Acad. Sci. 17, 1931, 684-688; K. V. Mardia and K. Foster,
//             Communications in Statistics A 12, 1983, 207-221)
// Status: NoCases, ZeroWeights, NotFinite; TooFewCases (n not above p); NotPositiveDefinite.
struct MardiaResult {
  EStatus status = EStatus::NoCases;
  std::int64_t cases = 0;
  double n = 0;
  int p = 0;
  double skewness = 0, chiSquareSkewness = 0, dfSkewness = 0, pSkewness = 1;
  double smallSample = 0, pSmallSample = 1;
  double kurtosis = 0, expectedKurtosis = 0, zKurtosis = 0, pKurtosis = 1;
  double relativeKurtosis = 0;
  double zSkewness = 0, chiSquareJoint = 0, pJoint = 1;
};

// Takes means and covariances from a first pass over the same cases (listwise), and the cases once
// more. Skewness needs the third moments of the whitened variables: memory and time grow with p^3 /
// 6 numbers (and p^3 / 6 operations a case), never with the cases. Results do not depend on the
// number of threads.
class CMardia {
 public:
  // `moments` must be listwise (else std::invalid_argument). When its covariance matrix is not
  // positive definite, Add does nothing and Result says so.
  explicit CMardia(const CMoments& moments, int threads = 1);
  ~CMardia();
  CMardia(CMardia&&) noexcept;
  CMardia& operator=(CMardia&&) noexcept;

  void Add(const CaseBlock& block);

  // For cases that are added apart, in one thread, and merged later: an object with the same means
  // and covariances. Merging one with others throws std::invalid_argument.
  CMardia WithoutCases() const;
  void Merge(const CMardia& other);

  MardiaResult Result() const;

  // Bytes that an object for p variables takes; ask before making one for many variables.
  static std::int64_t MemoryFor(int p);

 private:
  struct State;
  explicit CMardia(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace stats
