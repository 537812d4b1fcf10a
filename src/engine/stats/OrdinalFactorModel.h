// Ordinal answers given normal factors, and the factors given the answers of one case.
#pragma once

#include <cstdint>
#include <vector>

#include <Eigen/Core>

#include "engine/stats/GaussHermite.h"
#include "engine/stats/ResponseFunction.h"

namespace stats {

// More than these need more quadrature points than can be gone through.
inline constexpr int kMostFactors = 8;

// P(answer to j <= category a | factors f) = F(threshold[j](a) - slopes.row(j) f), the factors
// being independent standard normal variables. Thresholds ascend.
struct OrdinalFactorParameters {
  std::vector<Eigen::VectorXd> threshold;
  Eigen::MatrixXd slopes;  // variables by factors

  int Variables() const { return static_cast<int>(threshold.size()); }
  int Factors() const { return static_cast<int>(slopes.cols()); }
  // Thresholds of a variable, then its slopes, variable after variable.
  Eigen::Index Count() const;
  Eigen::Index Offset(int variable) const;  // of its first one
  Eigen::Index CountOf(int variable) const {
    return threshold[static_cast<std::size_t>(variable)].size() + slopes.cols();
  }
};

// The posterior distribution of the factors of one case on a grid of quadrature points that is
// moved to its mode and stretched by its curvature there (J. C. Naylor and A. F. M. Smith, Applied
// Statistics 31, 1982, 214-225; Q. Liu and D. A. Pierce, Biometrika 81, 1994, 624-629). Keeps its
// memory from case to case; not for several threads at once.
class CFactorPosterior {
 public:
  // All must outlive this.
  CFactorPosterior(const OrdinalFactorParameters& parameters, const CResponseFunction& response,
                   const HermiteGrid& grid);

  // The mode is looked for from `mode` on, which it replaces. False when the posterior cannot be
  // computed (parameters that are not finite).
  bool Compute(const std::uint8_t* codes, double* mode);

  double LogLikelihood() const { return logLikelihood_; }
  const Eigen::ArrayXd& Weights() const { return weights_; }  // of the points, sum 1
  const Eigen::MatrixXd& Points() const { return points_; }   // a row a point
  // The variables that have an answer, and what goes with each at the points.
  const std::vector<int>& Answered() const { return answered_; }
  const ResponseCells& Cells(std::size_t place) const { return cells_[place]; }

  Eigen::VectorXd Mean() const;
  Eigen::VectorXd Variance() const;

 private:
  // No memory is taken for them.
  using FactorVector = Eigen::Matrix<double, Eigen::Dynamic, 1, 0, kMostFactors, 1>;
  using FactorMatrix =
      Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, kMostFactors, kMostFactors>;

  struct Height {
    double value = 0;
    FactorVector gradient;
    FactorMatrix curvature;  // minus the second derivatives
  };
  double Lower(int variable, int code) const;
  double Upper(int variable, int code) const;
  Height HeightAt(const std::uint8_t* codes, const FactorVector& factors);
  bool FindMode(const std::uint8_t* codes, FactorVector& mode, FactorMatrix& curvature);

  const OrdinalFactorParameters& parameters_;
  const CResponseFunction& response_;
  const HermiteGrid& grid_;
  std::vector<int> answered_;
  std::vector<ResponseCells> cells_;
  ResponseCells single_;
  Eigen::ArrayXd one_, x_, logs_, products_, weights_;
  Eigen::MatrixXd points_;
  double logLikelihood_ = 0;
};

}  // namespace stats
