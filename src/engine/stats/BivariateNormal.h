// The standard bivariate normal distribution.
#pragma once

#include <array>
#include <vector>

namespace stats {

// P(X < x, Y < y) at correlation r in [-1, 1]; x and y may be infinite. Absolute error about 1e-15.
double BivariateNormalCdf(double x, double y, double r);

// The density at correlation |r| < 1. It is also the derivative of the distribution function by r
// (R. L. Plackett, Biometrika 41, 1954, 351-360). 0 when x or y is infinite.
double BivariateNormalDensity(double x, double y, double r);

// Density and its derivative by r.
struct DensityAndSlope {
  double density = 0;
  double byCorrelation = 0;
};
DensityAndSlope BivariateNormalDensitySlope(double x, double y, double r);

// The part of the distribution function that dependence adds, at one correlation for many points:
//   Excess(x, y) = P(X < x, Y < y) - P(X < x) P(Y < y)
//                = 1/(2 pi) integral over t from 0 to asin r of
//                  exp(-(x^2 + y^2 - 2 x y sin t) / (2 cos^2 t))
// (Z. Drezner and G. O. Wesolowsky, J. Statist. Comput. Simul. 35, 1990, 101-107, with the angle
// as the variable as in A. Genz, Statistics and Computing 14, 2004, 251-260). Gauss-Legendre nodes;
// toward |r| = 1 the interval is cut into pieces that halve the distance to the right angle. All
// terms have one sign, so the excess keeps its relative accuracy in the tails.
class CCorrelationQuadrature {
 public:
  explicit CCorrelationQuadrature(double r = 0) { Reset(r); }
  void Reset(double r);  // |r| < 1
  double Excess(double x, double y) const;

  // excess[a * ny + b] for all pairs of finite points.
  void ExcessGrid(const double* x, int nx, const double* y, int ny, double* excess) const;

 private:
  struct Node {
    double sine, scale, weight;  // scale = 1 / (2 cos^2)
  };
  void AddPiece(double begin, double end);
  std::vector<Node> nodes_;
};

}  // namespace stats
