#include "engine/stats/Quad.h"

#include <algorithm>

namespace stats {

CQuadCholesky::CQuadCholesky(const CQuadMatrix& matrix, double tolerance)
    : factor_(matrix.Size()), scale_(static_cast<std::size_t>(matrix.Size())) {
  const int size = matrix.Size();
  for (int i = 0; i < size; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const Quad root = SquareRoot(matrix(i, i));
    if (!(root > 0)) {
      failed_ = i;
      return;
    }
    scale_[at] = 1 / root;
    for (int j = 0; j <= i; ++j) {
      Quad sum = matrix(i, j) * scale_[at] * scale_[static_cast<std::size_t>(j)];
      for (int k = 0; k < j; ++k) sum -= factor_(i, k) * factor_(j, k);
      if (j < i) {
        factor_(i, j) = sum / factor_(j, j);
        continue;
      }
      smallestPivot_ = std::min(smallestPivot_, static_cast<double>(sum));
      if (!(sum > Quad(tolerance))) {
        failed_ = i;
        return;
      }
      factor_(i, i) = SquareRoot(sum);
    }
  }
}

std::vector<Quad> CQuadCholesky::Solve(const std::vector<Quad>& right) const {
  const int size = factor_.Size();
  std::vector<Quad> x(right);
  for (int i = 0; i < size; ++i) {
    const auto at = static_cast<std::size_t>(i);
    x[at] *= scale_[at];
    for (int k = 0; k < i; ++k) x[at] -= factor_(i, k) * x[static_cast<std::size_t>(k)];
    x[at] /= factor_(i, i);
  }
  for (int i = size - 1; i >= 0; --i) {
    const auto at = static_cast<std::size_t>(i);
    for (int k = i + 1; k < size; ++k) x[at] -= factor_(k, i) * x[static_cast<std::size_t>(k)];
    x[at] /= factor_(i, i);
  }
  for (std::size_t i = 0; i < x.size(); ++i) x[i] *= scale_[i];
  return x;
}

CQuadMatrix CQuadCholesky::Inverse() const {
  const int size = factor_.Size();
  CQuadMatrix inverse(size);
  for (int j = 0; j < size; ++j) {
    std::vector<Quad> unit(static_cast<std::size_t>(size), Quad(0));
    unit[static_cast<std::size_t>(j)] = 1;
    const std::vector<Quad> column = Solve(unit);
    for (int i = 0; i < size; ++i) inverse(i, j) = column[static_cast<std::size_t>(i)];
  }
  return inverse;
}

}  // namespace stats
