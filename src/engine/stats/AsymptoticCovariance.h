// Asymptotic covariance matrices of covariances and correlations, already divided by the number of
// cases. All are sums of products of influence values: what one case adds to an estimate, to first
// order.
#pragma once

#include <cstdint>
#include <memory>

#include <Eigen/Core>

#include "engine/stats/Blocks.h"
#include "engine/stats/Moments.h"
#include "engine/stats/PairTables.h"
#include "engine/stats/Polychoric.h"
#include "engine/stats/Status.h"

namespace stats {

// status: NoCases, ZeroWeights, NotFinite, TooFewCases; Constant (a correlation of a constant
// variable) and, for polychoric correlations, the status of the first pair without an estimate;
// `variable` and `other` name the offender, counted from 0. Without Ok the matrix is empty.
struct AsymptoticCovarianceResult {
  EStatus status = EStatus::NoCases;
  int variable = -1, other = -1;
  double n = 0;  // of the listwise cases; under pairwise deletion the smallest of the pairs
  Eigen::MatrixXd matrix;  // symmetric, both triangles filled
};

// Distribution-free covariance matrix of product moments (M. W. Browne, British Journal of
// Mathematical and Statistical Psychology 37, 1984, 62-83): of the elements of the covariance
// matrix on and below the diagonal, by rows, m_ijkl - s_ij s_kl with divisors n; or of the
// correlations below the diagonal, by rows (J. H. Steiger and A. R. Hakstian, same journal 35,
// 1982, 208-215). Cases that were left out of `moments` are left out here: listwise as a whole;
// pairwise from the elements that need the missing value (each element then has its own n). Takes
// the cases in a second pass. Memory: half the square of the number of elements (as a full matrix),
// times 8.
class CProductMomentAcov {
 public:
  // kind: Covariance or Correlation (else std::invalid_argument).
  CProductMomentAcov(const CMoments& moments, EMoments kind, int threads = 1);
  ~CProductMomentAcov();
  CProductMomentAcov(CProductMomentAcov&&) noexcept;
  CProductMomentAcov& operator=(CProductMomentAcov&&) noexcept;

  void Add(const CaseBlock& block);
  AsymptoticCovarianceResult Result() const;

  static std::int64_t MemoryFor(int variables, EMoments kind);  // bytes

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// Polychoric correlations below the diagonal, by rows: the exact delta method on the two-step
// estimating equations. With g(r, s, t) the mean derivative of the log-likelihood of a pair by r
// at the thresholds s and t, the influence of a case is
//   -(score(case) + dg/ds influence(s) + dg/dt influence(t)) / (dg/dr),
// the derivatives being the observed ones (second derivatives at the data, not their
// expectations under the model), influence(s[a]) = ([category <= a] - F[a]) / density(s[a]).
// Compare B. Muthen, Psychometrika 49, 1984, 115-132, and K. G. Joreskog, Psychometrika 59, 1994,
// 381-389. Valid whether or not the underlying distribution is normal.
class CPolychoricAcov {
 public:
  // `tables` and `matrix` belong to the same cases, which Add gets once more.
  CPolychoricAcov(const CPairTables& tables, const PolychoricMatrix& matrix, EDeletion deletion,
                  int threads = 1);
  ~CPolychoricAcov();
  CPolychoricAcov(CPolychoricAcov&&) noexcept;
  CPolychoricAcov& operator=(CPolychoricAcov&&) noexcept;

  void Add(const CodeBlock& block);  // as CPairTables::Add
  AsymptoticCovarianceResult Result() const;

  static std::int64_t MemoryFor(int variables);  // bytes

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace stats
