#include "engine/stats/RegressionFit.h"

#include <algorithm>

#include "engine/stats/Distributions.h"

namespace stats {

bool RegressionFit::Begin(const RegressorScale& scale) {
  status = scale.status;
  variable = scale.variable;
  n = scale.n;
  smallestPivot = scale.smallestPivot;
  return status == EStatus::Ok;
}

bool RegressionFit::End(const NewtonResult& newton, int slopes) {
  stopped = newton.stopped;
  status = newton.status;
  iterations = newton.iterations;
  if (status == EStatus::Boundary && newton.runaway < slopes) variable = newton.runaway;
  if (stopped || status != EStatus::Ok) return false;
  gradient = newton.sums.gradient.cwiseAbs().maxCoeff() / n;
  return true;
}

void RegressionFit::Compare(double withX, double withoutX, int slopes) {
  logLikelihood = withX;
  logLikelihoodNull = withoutX;
  ratio = std::max(0.0, 2 * (withX - withoutX));
  df = slopes;
  p = ChiSquareUpper(ratio, df);
}

}  // namespace stats
