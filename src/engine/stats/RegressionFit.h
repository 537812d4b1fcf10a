// How a regression by maximum likelihood went, and how well it fits.
#pragma once

#include "engine/stats/RegressionSurvey.h"

namespace stats {

struct RegressionFit {
  EStatus status = EStatus::BadArgument;
  int variable = -1;  // that the status speaks of, a column of x
  bool stopped = false;
  double n = 0;
  double logLikelihood = 0, logLikelihoodNull = 0;  // null: no x
  double ratio = 0, df = 0, p = 1;                  // likelihood ratio of the slopes
  double gradient = 0;       // largest, of the mean log-likelihood in standardised variables
  double smallestPivot = 1;  // see RegressorScale
  int iterations = 0;

  // Takes what there is to know of the x. False when these have a fault.
  bool Begin(const RegressorScale& scale);
  // Takes the end of the search; the slopes are the first parameters. False when it is no maximum.
  bool End(const NewtonResult& newton, int slopes);
  void Compare(double withX, double withoutX, int slopes);
};

}  // namespace stats
