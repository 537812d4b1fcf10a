#include "engine/stats/GaussHermite.h"

#include <cmath>

#include <Eigen/Eigenvalues>

namespace stats {

using Eigen::Index;

HermiteRule GaussHermite(int nodes) {
  const Eigen::VectorXd diagonal = Eigen::VectorXd::Zero(nodes);
  Eigen::VectorXd beside(nodes - 1);
  for (Index i = 0; i + 1 < nodes; ++i) beside(i) = std::sqrt(static_cast<double>(i + 1));
  Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver;
  solver.computeFromTridiagonal(diagonal, beside);
  return {solver.eigenvalues(), solver.eigenvectors().row(0).cwiseAbs2()};
}

HermiteGrid ProductGrid(int nodes, int dimensions) {
  const HermiteRule rule = GaussHermite(nodes);
  Index points = 1;
  for (int d = 0; d < dimensions; ++d) points *= nodes;
  HermiteGrid grid{Eigen::MatrixXd(points, dimensions), Eigen::VectorXd::Zero(points)};
  for (Index q = 0; q < points; ++q) {
    Index rest = q;
    for (Index d = 0; d < dimensions; ++d) {
      const double x = rule.node(rest % nodes);
      grid.points(q, d) = x;
      grid.logFactors(q) += std::log(rule.weight(rest % nodes)) + x * x / 2;
      rest /= nodes;
    }
  }
  return grid;
}

}  // namespace stats
