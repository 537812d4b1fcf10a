// Rotation of factor loadings.
#pragma once

#include <Eigen/Core>

namespace stats {

// Orthogonal: rows are brought to length 1, pairs of columns turned until the variance of the
// squared loadings is at its maximum, rows brought back (H. F. Kaiser, Psychometrika 23, 1958,
// 187-200). Columns by descending squares, each adding up to 0 or more.
struct VarimaxResult {
  Eigen::MatrixXd loadings;
  Eigen::MatrixXd transformation;  // loadings = unrotated * transformation
};
VarimaxResult RotateVarimax(const Eigen::MatrixXd& loadings);

// Oblique: the transformation of varimax loadings that comes nearest, in squares, to their powers
// (signs kept), with factors of unit variance (A. E. Hendrickson and P. O. White, British Journal
// of Statistical Psychology 17, 1964, 65-70). Of one factor: nothing is turned.
struct PromaxResult {
  Eigen::MatrixXd loadings;     // the pattern
  Eigen::MatrixXd correlation;  // of the factors
};
inline constexpr double kPromaxPower = 4;
PromaxResult RotatePromax(const Eigen::MatrixXd& varimaxLoadings, double power = kPromaxPower);

}  // namespace stats
