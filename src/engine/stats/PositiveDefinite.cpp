// The report on a matrix's eigenvalues; declared in Moments.h.
#include <algorithm>
#include <limits>

#include <Eigen/Eigenvalues>

#include "engine/stats/Moments.h"

namespace stats {

Definiteness CheckPositiveDefinite(const Eigen::MatrixXd& matrix) {
  Definiteness result;
  if (matrix.rows() == 0 || matrix.rows() != matrix.cols()) {
    result.status = EStatus::BadArgument;
    return result;
  }
  if (!matrix.allFinite()) {
    result.status = EStatus::NotFinite;
    return result;
  }
  const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(matrix, Eigen::EigenvaluesOnly);
  if (solver.info() != Eigen::Success) {
    result.status = EStatus::NotConverged;
    return result;
  }
  result.eigenvalues = solver.eigenvalues();
  result.smallest = result.eigenvalues[0];
  result.largest = result.eigenvalues[matrix.rows() - 1];
  const double rounding = static_cast<double>(matrix.rows()) *
                          std::numeric_limits<double>::epsilon() * std::max(result.largest, 0.0);
  result.notAboveZero = static_cast<int>((result.eigenvalues.array() <= rounding).count());
  if (result.notAboveZero > 0) result.status = EStatus::NotPositiveDefinite;
  return result;
}

}  // namespace stats
