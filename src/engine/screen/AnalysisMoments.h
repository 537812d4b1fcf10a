// The covariances or correlations that a procedure works on: product moments, polychoric and
// polyserial correlations by the types of the variables.
#pragma once

#include "engine/screen/MomentMatrix.h"

// Passes over the cases as often as it takes. Any kind but None. False with the reason in `fault`,
// without a cause when the run was interrupted.
bool EstimateAnalysisMoments(ENGINERUN& run, const SCREENVARIABLES& variables, MOMENTS kind,
                             ANALYSISMOMENTS& moments, FAULT& fault);

// Adds new variables to the job that are sums of the standardised variables: weights has a row a
// variable of the analysis and a column a score. An ordinal variable enters by the mean of its
// underlying normal variable within the category, a censored one beyond its limit likewise. A case
// with a missing value has no scores.
void AddScoreVariables(ENGINERUN& run, const SCREENVARIABLES& variables,
                       const ANALYSISMOMENTS& moments, const Eigen::MatrixXd& weights,
                       const VARIABLELIST& outputs);
