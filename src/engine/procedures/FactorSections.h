// The sections of an exploratory factor analysis, from its results.
#pragma once

#include <vector>

#include "engine/report/Report.h"
#include "engine/stats/FactorAnalysis.h"
#include "engine/stats/Rotation.h"

// `ordinal`: the matrix holds polychoric or polyserial correlations.
void WriteFactorFit(CReport& report, const stats::FactorFit& fit, bool ordinal);

// Of Heywood cases, and of a matrix that is nearly singular or not positive definite.
void WriteFactorWarnings(CReport& report, const std::vector<CString>& names,
                         const stats::FactorResult& result, double smallestEigenvalue);

// Unrotated loadings and, of two factors and more, the rotated ones.
void WriteFactorSolutions(CReport& report, const std::vector<CString>& names,
                          const stats::FactorResult& result, const stats::VarimaxResult& varimax);

void WriteResidualCorrelations(CReport& report, const std::vector<CString>& names,
                               const Eigen::MatrixXd& correlation, const Eigen::MatrixXd& residual);
