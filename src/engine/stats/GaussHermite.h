// Gauss-Hermite quadrature over the standard normal distribution.
#pragma once

#include <Eigen/Core>

namespace stats {

// Sum of weight f(node) = mean of f of a standard normal variable, exact for polynomials up to the
// degree 2 nodes - 1. From the eigenvalues of the recurrence's matrix (G. H. Golub and J. H.
// Welsch, Mathematics of Computation 23, 1969, 221-230).
struct HermiteRule {
  Eigen::VectorXd node, weight;
};
HermiteRule GaussHermite(int nodes);

// All combinations of the nodes in several dimensions: a row a point. `logFactors` are the
// logarithms of the weights divided by exp(-|point|^2 / 2).
struct HermiteGrid {
  Eigen::MatrixXd points;
  Eigen::VectorXd logFactors;
};
HermiteGrid ProductGrid(int nodes, int dimensions);

}  // namespace stats
