// Moment matrices of continuous variables from blocks of cases.
#pragma once

#include <cstdint>
#include <memory>

#include <Eigen/Core>

#include "engine/stats/Blocks.h"
#include "engine/stats/Status.h"

namespace stats {

// Sums of weights, means and sums of products about the means. Under listwise deletion all
// elements rest on the same cases; under pairwise deletion the element (i, j) rests on the cases
// that have both variables, with the means of these cases.
class CMoments {
 public:
  CMoments(int variables, EDeletion deletion, int threads = 1);
  ~CMoments();
  CMoments(CMoments&&) noexcept;
  CMoments& operator=(CMoments&&) noexcept;

  // Segments of cases are centred at their own means and merged, so offsets do no harm (T. F. Chan,
  // G. H. Golub and R. J. LeVeque, American Statistician 37, 1983, 242-247). The block has as many
  // variables as the constructor was told (else std::invalid_argument). Results do not depend on
  // the number of threads. Memory: a few matrices a thread.
  void Add(const CaseBlock& block);
  void Merge(const CMoments& other);

  int Variables() const;
  EDeletion Deletion() const;
  std::int64_t Cases() const;    // cases used (pairwise: every case with a weight)
  std::int64_t LeftOut() const;  // incomplete (listwise) or without a weight
  bool WithoutWeights() const;   // cases were there, none of them with a weight
  bool Finite() const;           // false once an infinite cell was seen

  // Of the cases that have both variables; counted from 0, i and j may be equal.
  double N(int i, int j) const;        // sum of weights
  double Mean(int i, int j) const;     // of i
  double Product(int i, int j) const;  // sum of products about those means
  double Square(int i, int j) const;   // sum of squares of i about Mean(i, j)

 private:
  struct State;
  std::unique_ptr<State> state_;
};

enum class EMoments {
  Covariance,   // divisor n - 1
  Correlation,  // Pearson; under pairwise deletion both deviations from the pair's own cases
  Raw,          // sum of x y / n, about zero
  Augmented,    // as Raw with a variable 1 behind the others: last row the means, corner 1
};

// status: NoCases, ZeroWeights, NotFinite; TooFewCases (an n of not above 1); Constant (Correlation
// only), `variable` and, for pairs, `other` name the first offender, counted from 0. Elements
// without a value are 0.
struct MomentMatrix {
  EStatus status = EStatus::NoCases;
  int variable = -1, other = -1;
  Eigen::MatrixXd matrix;
  Eigen::VectorXd mean;  // of each variable's own cases
  Eigen::VectorXd sd;    // divisor n - 1
  double smallestN = 0;  // over all elements
};

MomentMatrix ComputeMoments(const CMoments& moments, EMoments kind);

// Whether a symmetric matrix is positive definite: its smallest eigenvalue is above the rounding
// error of the largest (order times 2.2e-16 times the largest). Nothing is changed or repaired.
struct Definiteness {
  EStatus status = EStatus::Ok;  // NotPositiveDefinite; NotFinite; BadArgument (empty, not square)
  double smallest = 0, largest = 0;
  int notAboveZero = 0;         // eigenvalues that count as zero or negative
  Eigen::VectorXd eigenvalues;  // ascending
};

Definiteness CheckPositiveDefinite(const Eigen::MatrixXd& matrix);

}  // namespace stats
