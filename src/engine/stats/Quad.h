// Arithmetic with about 33 digits, for sums whose differences matter.
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace stats {

#ifdef __SIZEOF_FLOAT128__
__extension__ typedef __float128 Quad;
#else
using Quad = long double;
#endif

// 0 for what is not above 0.
inline Quad SquareRoot(Quad x) {
  Quad root = std::sqrt(static_cast<double>(x));
  if (!(root > 0)) return 0;
  for (int i = 0; i < 2; ++i) root = (root + x / root) / 2;
  return root;
}

// Rows of a square matrix.
class CQuadMatrix {
 public:
  explicit CQuadMatrix(int size = 0)
      : size_(size),
        cells_(static_cast<std::size_t>(size) * static_cast<std::size_t>(size), Quad(0)) {}
  int Size() const { return size_; }
  Quad& operator()(int i, int j) { return cells_[At(i, j)]; }
  Quad operator()(int i, int j) const { return cells_[At(i, j)]; }

 private:
  std::size_t At(int i, int j) const {
    return static_cast<std::size_t>(i) * static_cast<std::size_t>(size_) +
           static_cast<std::size_t>(j);
  }

  int size_;
  std::vector<Quad> cells_;
};

// The Cholesky factor of a symmetric matrix that is scaled to a unit diagonal first, and what can
// be had from it.
class CQuadCholesky {
 public:
  // A pivot of the scaled matrix at or below `tolerance` ends the work.
  CQuadCholesky(const CQuadMatrix& matrix, double tolerance);

  // The row whose pivot was too small, -1 for none; nothing below is then defined.
  int Failed() const { return failed_; }
  double SmallestPivot() const { return smallestPivot_; }
  std::vector<Quad> Solve(const std::vector<Quad>& right) const;
  CQuadMatrix Inverse() const;

 private:
  CQuadMatrix factor_;
  std::vector<Quad> scale_;
  int failed_ = -1;
  double smallestPivot_ = 1;
};

}  // namespace stats
