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
template <typename Each, typename List>
void ForMembers(stats::PolychoricResult& result, const Each& each, const List& /*list*/) {
  each(result);
}

template <typename Each, typename List>
void ForMembers(stats::PolyserialResult& result, const Each& each, const List& list) {
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

template <typename Each, typename List>
void ForMembers(stats::NormalPairResult& result, const Each& each, const List& list) {
  each(result.status);
  each(result.cases);
  each(result.iterations);
  for (auto* number : {&result.n, &result.r, &result.standardError, &result.logLikelihood,
                       &result.gradient, &result.curve}) {
    each(*number);
  }
  for (stats::MarginSlopes* slopes : {&result.first, &result.second}) {
    each(slopes->point);
    each(slopes->square);
    list(slopes->edges);
  }
  list(result.cellScores);
}

// This process has so many results at resultAt(k), k from its number on, every so many-th as there
// are processes.
template <typename ResultAt>
bool ShareResults(ENGINERUN& run, std::size_t count, const ResultAt& resultAt, FAULT& fault) {
  const auto parts = static_cast<std::size_t>(run.Parts());
  if (parts == 1) return true;
  CParcelWriter mine;
  for (auto k = static_cast<std::size_t>(run.Part()); k < count; k += parts) {
    ForMembers(
        resultAt(k), [&](const auto& number) { mine.Put(number); },
        [&](const std::vector<double>& numbers) { PutNumbers(numbers, mine); });
  }
  std::vector<std::string> all;
  if (!run.Exchange(mine.Bytes(), all, fault)) return false;
  for (std::size_t other = 0; other < parts; ++other) {
    CParcelReader theirs(all[other]);
    for (std::size_t k = other; k < count; k += parts) {
      ForMembers(
          resultAt(k),
          [&](auto& number) { number = theirs.Take<std::remove_reference_t<decltype(number)>>(); },
          [&](std::vector<double>& numbers) { TakeNumbers(theirs, numbers); });
    }
  }
  return true;
}

}  // namespace

bool SharePolyserials(ENGINERUN& run, std::vector<stats::PolyserialResult>& results, FAULT& fault) {
  return ShareResults(
      run, results.size(), [&](std::size_t k) -> auto& { return results[k]; }, fault);
}

bool ShareNormalPairs(ENGINERUN& run, const std::vector<std::size_t>& places,
                      std::vector<stats::NormalPairResult>& pairs, FAULT& fault) {
  return ShareResults(
      run, places.size(), [&](std::size_t k) -> auto& { return pairs[places[k]]; }, fault);
}

bool EstimatePairs(ENGINERUN& run, const stats::CPairTables& tables,
                   stats::PolychoricMatrix& matrix, FAULT& fault) {
  matrix = stats::EstimatePolychoricPart(tables, run.threads, run.Part(), run.Parts());
  const auto pairAt = [&](std::size_t k) -> auto& {
    return matrix.pairs[k];
  };
  if (!ShareResults(run, matrix.pairs.size(), pairAt, fault)) return false;
  stats::SetCorrelations(matrix);
  return true;
}
