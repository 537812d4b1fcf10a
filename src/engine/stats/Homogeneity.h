// Do two ordinal variables with the same categories, observed on the same cases, have the same
// distribution?
#pragma once

#include <vector>

#include "engine/stats/PairTables.h"
#include "engine/stats/Status.h"

namespace stats {

// Marginal homogeneity of the square table: A. Stuart, Biometrika 42, 1955, 412-416, and A. E.
// Maxwell, British Journal of Psychiatry 116, 1970, 651-655; V. P. Bhapkar, Journal of the American
// Statistical Association 61, 1966, 228-235, which is W / (1 - W / n) of that W. Symmetry: A. H.
// Bowker, same journal 43, 1948, 572-574, over the pairs of cells that have cases. Categories that
// neither variable has are left out.
// Status: BadArgument (the table is not square), ZeroWeights, NotFinite, OneCategory, Boundary (the
// differences of the margins have no variance in some direction, as when no case changes between
// two groups of categories: no test).
struct HomogeneityResult {
  EStatus status = EStatus::BadArgument;
  double n = 0;
  std::vector<double> row, column;  // the margins
  double stuartMaxwell = 0, pStuartMaxwell = 1;
  double bhapkar = 0, pBhapkar = 1;
  int df = 0;
  double bowker = 0, pBowker = 1;
  int dfBowker = 0;
};

HomogeneityResult TestHomogeneity(const FrequencyTable& table);

}  // namespace stats
