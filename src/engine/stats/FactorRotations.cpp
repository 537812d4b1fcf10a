#include "engine/stats/FactorRotations.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <Eigen/LU>
#include <Eigen/QR>

#include "engine/stats/OrdinalFactorAnalysis.h"
#include "engine/stats/Rotation.h"

namespace stats {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

namespace {

// The place of the slopes of a variable among the parameters.
Index SlopesAt(const OrdinalFactorParameters& parameters, int variable) {
  return parameters.Offset(variable) +
         parameters.threshold[static_cast<std::size_t>(variable)].size();
}

// One value for each pair of columns: what is not symmetric in the matrix.
VectorXd Asymmetry(const MatrixXd& matrix) {
  const Index m = matrix.rows();
  VectorXd values(m * (m - 1) / 2);
  Index at = 0;
  for (Index r = 1; r < m; ++r) {
    for (Index s = 0; s < r; ++s) values(at++) = matrix(r, s) - matrix(s, r);
  }
  return values;
}

}  // namespace

MatrixXd RotationDirections(const OrdinalFactorParameters& parameters) {
  const MatrixXd& slopes = parameters.slopes;
  const Index pairs = slopes.cols() * (slopes.cols() - 1) / 2;
  MatrixXd directions = MatrixXd::Zero(parameters.Count(), pairs);
  Index pair = 0;
  for (Index r = 1; r < slopes.cols(); ++r) {
    for (Index s = 0; s < r; ++s, ++pair) {
      for (int j = 0; j < parameters.Variables(); ++j) {
        const Index at = SlopesAt(parameters, j);
        directions(at + r, pair) = slopes(j, s);
        directions(at + s, pair) = -slopes(j, r);
      }
    }
  }
  if (pairs == 0) return directions;
  return Eigen::HouseholderQR<MatrixXd>(directions).householderQ() *
         MatrixXd::Identity(directions.rows(), pairs);
}

MatrixXd HoldRotations(const OrdinalFactorParameters& parameters, const MatrixXd& information) {
  const MatrixXd directions = RotationDirections(parameters);
  return information + information.diagonal().mean() * directions * directions.transpose();
}

VectorXd PrincipalAxesEquations(const MatrixXd& slopes) {
  const MatrixXd products = slopes.transpose() * slopes;
  return Asymmetry(products.triangularView<Eigen::StrictlyLower>());
}

// The criterion is stationary where L' (L^3 - L diag(L' L) / rows) is symmetric, L being the slopes
// with rows of length 1.
VectorXd VarimaxEquations(const MatrixXd& slopes) {
  const MatrixXd rows =
      slopes.rowwise().norm().cwiseMax(1e-300).cwiseInverse().asDiagonal() * slopes;
  const VectorXd squares = rows.colwise().squaredNorm() / static_cast<double>(rows.rows());
  const MatrixXd gradient = rows.array().cube().matrix() - rows * squares.asDiagonal();
  return Asymmetry(rows.transpose() * gradient);
}

MatrixXd RotateInformation(const OrdinalFactorParameters& parameters, const MatrixXd& information,
                           const MatrixXd& transformation) {
  const Index m = transformation.rows();
  MatrixXd rotated = information;
  for (int j = 0; j < parameters.Variables(); ++j) {
    const Index at = SlopesAt(parameters, j);
    rotated.middleCols(at, m) = (rotated.middleCols(at, m) * transformation).eval();
  }
  for (int j = 0; j < parameters.Variables(); ++j) {
    const Index at = SlopesAt(parameters, j);
    rotated.middleRows(at, m) = (transformation.transpose() * rotated.middleRows(at, m)).eval();
  }
  return rotated;
}

MatrixXd RestrictedCovariance(const OrdinalFactorParameters& parameters,
                              const MatrixXd& information, const RotationEquations& equations) {
  const Index m = parameters.Factors();
  const Index count = information.rows(), pairs = m * (m - 1) / 2;
  MatrixXd bordered = MatrixXd::Zero(count + pairs, count + pairs);
  bordered.topLeftCorner(count, count) = information;
  MatrixXd slopes = parameters.slopes;
  const double unit = information.diagonal().mean();  // brings the border to the same size
  for (int j = 0; pairs > 0 && j < parameters.Variables(); ++j) {
    for (Index k = 0; k < m; ++k) {
      const double kept = slopes(j, k);
      const double step = 1e-5 * std::max(1.0, std::fabs(kept));
      slopes(j, k) = kept + step;
      VectorXd change = equations(slopes);
      slopes(j, k) = kept - step;
      change = (change - equations(slopes)) * (unit / (2 * step));
      slopes(j, k) = kept;
      const Index at = SlopesAt(parameters, j) + k;
      bordered.block(at, count, 1, pairs) = change.transpose();
      bordered.block(count, at, pairs, 1) = change;
    }
  }
  return Eigen::PartialPivLU<MatrixXd>(bordered).inverse().topLeftCorner(count, count);
}

MatrixXd LoadingErrors(const OrdinalFactorParameters& parameters, const MatrixXd& covariance,
                       double residualVariance) {
  const Index m = parameters.Factors();
  MatrixXd errors(parameters.Variables(), m);
  for (int j = 0; j < parameters.Variables(); ++j) {
    const VectorXd slopes = parameters.slopes.row(j);
    const double variance = residualVariance + slopes.squaredNorm();
    const double root = std::sqrt(variance);
    const MatrixXd slope =
        MatrixXd::Identity(m, m) / root - slopes * slopes.transpose() / (variance * root);
    const Index at = SlopesAt(parameters, j);
    errors.row(j) = (slope * covariance.block(at, at, m, m) * slope.transpose())
                        .diagonal()
                        .cwiseMax(0.0)
                        .cwiseSqrt()
                        .transpose();
  }
  return errors;
}

PromaxErrors EstimatePromaxErrors(const OrdinalFactorParameters& varimax,
                                  const MatrixXd& covariance, double residualVariance) {
  MatrixXd slopes = varimax.slopes;
  const Index p = slopes.rows(), m = slopes.cols();
  // Loadings, then correlations, column after column.
  const auto rotated = [&] {
    const PromaxResult promax = RotatePromax(StandardisedLoadings(slopes, residualVariance));
    VectorXd values(p * m + m * m);
    values << promax.loadings.reshaped(), promax.correlation.reshaped();
    return values;
  };
  MatrixXd derivatives(p * m + m * m, p * m);
  std::vector<Index> places;  // of the slopes among the parameters
  for (int j = 0; j < varimax.Variables(); ++j) {
    for (Index k = 0; k < m; ++k) {
      double& slope = slopes(j, k);
      const double kept = slope;
      const double step = 1e-5 * std::max(1.0, std::fabs(kept));
      slope = kept + step;
      const VectorXd above = rotated();
      slope = kept - step;
      derivatives.col(static_cast<Index>(places.size())) = (above - rotated()) / (2 * step);
      slope = kept;
      places.push_back(SlopesAt(varimax, j) + k);
    }
  }
  const VectorXd errors = (derivatives * MatrixXd(covariance(places, places)))
                              .cwiseProduct(derivatives)
                              .rowwise()
                              .sum()
                              .cwiseMax(0.0)
                              .cwiseSqrt();
  return {errors.head(p * m).reshaped(p, m), errors.tail(m * m).reshaped(m, m)};
}

}  // namespace stats
