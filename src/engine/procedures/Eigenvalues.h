// The eigenvalues of an analysis as outputs show them.
#pragma once

#include <optional>

#include "engine/procedures/ProcedureReport.h"
#include "engine/stats/Components.h"

inline constexpr int kChanceSamples = 100;

// What the samples of a parallel analysis were.
CString ParallelAnalysisText(const ENGINERUN& run, bool ofCorrelations);

// A table with shares and sums, beside those that chance gives where they are wanted, and a scree
// listing: a bar for each eigenvalue.
void WriteEigenvalues(ENGINERUN& run, const Eigen::VectorXd& eigenvalues,
                      const std::optional<stats::ParallelAnalysisResult>& chance);

// As estimates, by their numbers.
ESTIMATES EigenvalueEstimates(const Eigen::VectorXd& eigenvalues);
