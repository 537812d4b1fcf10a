// Standard errors of slopes that rotations of the factors leave undetermined.
#pragma once

#include <functional>

#include <Eigen/Core>

#include "engine/stats/OrdinalFactorModel.h"

namespace stats {

// An orthonormal basis of the changes of the parameters that rotate the factors, and so leave the
// likelihood as it is.
Eigen::MatrixXd RotationDirections(const OrdinalFactorParameters& parameters);

// The information of unrestricted slopes does not determine the directions that rotate the factors:
// adds to it what makes them stiff and changes nothing else.
Eigen::MatrixXd HoldRotations(const OrdinalFactorParameters& parameters,
                              const Eigen::MatrixXd& information);

// Equations, one for each pair of factors, that are 0 for the rotation that was chosen.
using RotationEquations = std::function<Eigen::VectorXd(const Eigen::MatrixXd& slopes)>;
// Of the principal axes: slopes' slopes is diagonal.
Eigen::VectorXd PrincipalAxesEquations(const Eigen::MatrixXd& slopes);
// Of Kaiser's varimax.
Eigen::VectorXd VarimaxEquations(const Eigen::MatrixXd& slopes);

// The information of the parameters when the slopes are multiplied by an orthogonal matrix.
Eigen::MatrixXd RotateInformation(const OrdinalFactorParameters& parameters,
                                  const Eigen::MatrixXd& information,
                                  const Eigen::MatrixXd& transformation);

// Covariance matrix of the parameters under the equations: the first part of the inverse of the
// information bordered with the equations' derivatives (S. D. Silvey, Annals of Mathematical
// Statistics 30, 1959, 389-407; R. I. Jennrich, British Journal of Mathematical and Statistical
// Psychology 27, 1974, 122-131). The derivatives are
// numerical.
Eigen::MatrixXd RestrictedCovariance(const OrdinalFactorParameters& parameters,
                                     const Eigen::MatrixXd& information,
                                     const RotationEquations& equations);

// Standard errors of StandardisedLoadings, by the delta method.
Eigen::MatrixXd LoadingErrors(const OrdinalFactorParameters& parameters,
                              const Eigen::MatrixXd& covariance, double residualVariance);

// Standard errors of the PROMAX-rotated loadings and of the correlations of their factors, by the
// delta method with numerical derivatives. Parameters and covariance are those of the
// VARIMAX-rotated factors.
struct PromaxErrors {
  Eigen::MatrixXd loadings, correlation;
};
PromaxErrors EstimatePromaxErrors(const OrdinalFactorParameters& varimax,
                                  const Eigen::MatrixXd& covariance, double residualVariance);

}  // namespace stats
