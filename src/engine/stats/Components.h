// Principal components, and how many of them chance would give.
#pragma once

#include <cstdint>

#include <Eigen/Core>

#include "engine/stats/Status.h"

namespace stats {

// Of a covariance or correlation matrix. Eigenvalues descend; each vector has length 1 and adds up
// to 0 or more. Status: BadArgument (empty, not square), NotFinite, NotConverged.
struct ComponentsResult {
  EStatus status = EStatus::BadArgument;
  Eigen::VectorXd eigenvalues;
  Eigen::MatrixXd vectors;   // columns
  Eigen::MatrixXd loadings;  // vectors times the roots of their eigenvalues (0 for negative ones)
};
ComponentsResult EstimateComponents(const Eigen::MatrixXd& matrix);

// Eigenvalues of correlation matrices of n cases of independent normal variables (J. L. Horn,
// Psychometrika 30, 1965, 179-185): mean and 95th percentile over the samples, descending. The
// matrices are drawn as such (M. S. Bartlett, Proceedings of the Royal Society of Edinburgh 53,
// 1933, 260-283), so that time does not grow with n. n is above the number of variables (else empty
// results). Results depend on the seed and not on the threads.
struct ParallelAnalysisResult {
  Eigen::VectorXd mean, percentile95;
};
ParallelAnalysisResult AnalyseParallel(int variables, double n, int samples, std::uint64_t seed,
                                       int threads = 1);
// The same of covariance matrices of variables with these standard deviations.
ParallelAnalysisResult AnalyseParallel(const Eigen::VectorXd& deviations, double n, int samples,
                                       std::uint64_t seed, int threads = 1);

// How many eigenvalues, from the first one on, are above what chance exceeds in 5% of samples.
int CountAboveChance(const Eigen::VectorXd& eigenvalues, const ParallelAnalysisResult& chance);

}  // namespace stats
