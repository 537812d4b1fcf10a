#include "engine/screen/SharedPairs.h"

#include "engine/parallel/Parcel.h"

bool EstimatePairs(ENGINERUN& run, const stats::CPairTables& tables,
                   stats::PolychoricMatrix& matrix, FAULT& fault) {
  const auto part = static_cast<std::size_t>(run.Part());
  const auto parts = static_cast<std::size_t>(run.Parts());
  matrix = stats::EstimatePolychoricPart(tables, run.threads, run.Part(), run.Parts());
  if (parts > 1) {
    CParcelWriter mine;
    for (std::size_t k = part; k < matrix.pairs.size(); k += parts) mine.Put(matrix.pairs[k]);
    std::vector<std::string> all;
    if (!run.Exchange(mine.Bytes(), all, fault)) return false;
    for (std::size_t other = 0; other < parts; ++other) {
      CParcelReader theirs(all[other]);
      for (std::size_t k = other; k < matrix.pairs.size(); k += parts)
        matrix.pairs[k] = theirs.Take<stats::PolychoricResult>();
    }
  }
  stats::SetCorrelations(matrix);
  return true;
}
