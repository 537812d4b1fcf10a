#include "engine/screen/SharedPairs.h"

#include "engine/parallel/Parcel.h"

namespace {

void PutNumbers(const std::vector<double>& numbers, CParcelWriter& to) {
  to.Put(static_cast<std::uint64_t>(numbers.size()));
  to.PutDoubles(numbers.data(), numbers.size());
}

void TakeNumbers(CParcelReader& from, std::vector<double>& numbers) {
  numbers.resize(static_cast<std::size_t>(from.Take<std::uint64_t>()));
  from.TakeDoubles(numbers.data(), numbers.size());
}

// Calls `each` for every number of a result, and `list` for every list of them.
template <typename Result, typename Each, typename List>
void ForMembers(Result& result, const Each& each, const List& list) {
  each(result.status);
  each(result.cases);
  each(result.iterations);
  for (auto* number :
       {&result.n, &result.r, &result.standardError, &result.pointPolyserial, &result.logLikelihood,
        &result.gradient, &result.mean, &result.sd, &result.curve, &result.byZ, &result.bySquare}) {
    each(*number);
  }
  list(result.thresholds);
  list(result.byThreshold);
  list(result.frequencies);
}

}  // namespace

bool SharePolyserials(ENGINERUN& run, std::vector<stats::PolyserialResult>& results, FAULT& fault) {
  const auto part = static_cast<std::size_t>(run.Part());
  const auto parts = static_cast<std::size_t>(run.Parts());
  if (parts == 1) return true;
  CParcelWriter mine;
  for (std::size_t k = part; k < results.size(); k += parts) {
    ForMembers(
        results[k], [&](const auto& number) { mine.Put(number); },
        [&](const std::vector<double>& numbers) { PutNumbers(numbers, mine); });
  }
  std::vector<std::string> all;
  if (!run.Exchange(mine.Bytes(), all, fault)) return false;
  for (std::size_t other = 0; other < parts; ++other) {
    CParcelReader theirs(all[other]);
    for (std::size_t k = other; k < results.size(); k += parts) {
      ForMembers(
          results[k],
          [&](auto& number) { number = theirs.Take<std::remove_reference_t<decltype(number)>>(); },
          [&](std::vector<double>& numbers) { TakeNumbers(theirs, numbers); });
    }
  }
  return true;
}

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
