// Incomplete samples as EM takes them.
#pragma once

#include "engine/stats/IncompleteNormal.h"
#include "engine/stats/Univariate.h"

namespace incomplete {

inline stats::CMissingPatterns Patterns(const stats::CaseBlock& block) {
  stats::CUnivariate univariate(block.variables, stats::EDeletion::Pairwise);
  univariate.Add(block);
  Eigen::VectorXd center(block.variables), scale(block.variables);
  for (int j = 0; j < block.variables; ++j) {
    center(j) = univariate.Result(j).mean;
    scale(j) = univariate.Result(j).sd;
  }
  stats::CMissingPatterns patterns(center, scale);
  patterns.Add(block);
  return patterns;
}

}  // namespace incomplete
