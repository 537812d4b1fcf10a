#include "engine/screen/CensoredPairs.h"

#include <mutex>

#include "engine/screen/ColumnStore.h"
#include "engine/screen/Faults.h"
#include "engine/screen/SharedPairs.h"
#include "engine/stats/Parallel.h"

namespace {

stats::CNormalMargin MarginOf(const SCREENVARIABLE& variable, const ONEVARIABLERESULTS& results,
                              const stats::CPairTables* tables) {
  if (variable.IsOrdinal()) {
    return stats::CNormalMargin::Ordinal(tables != nullptr ? tables->Margin(variable.place)
                                                           : variable.values.counts);
  }
  const auto place = static_cast<std::size_t>(variable.place);
  if (!variable.IsCensored()) return stats::CNormalMargin::Continuous(results.numeric[place]);
  return stats::CNormalMargin::Censored(results.numeric[place], CensoringOf(variable.type),
                                        results.censored[place]);
}

stats::PairColumn ColumnOf(const SCREENVARIABLE& variable, const stats::CNormalMargin& margin,
                           const COLUMNSTORE& store) {
  const auto place = static_cast<std::size_t>(variable.place);
  if (variable.IsOrdinal()) return {&margin, nullptr, store.codes[place].data()};
  return {&margin, store.cells[place].data(), nullptr};
}

bool CheckMargins(const ENGINERUN& run, const SCREENVARIABLES& variables,
                  const stats::NormalPairs& pairs, FAULT& fault) {
  for (std::size_t i = 0; i < pairs.margins.size(); ++i) {
    const stats::EStatus status = pairs.margins[i].Status();
    if (status == stats::EStatus::Ok) continue;
    const SCREENVARIABLE& variable = variables.all[i];
    fault = OutputFault(
        run,
        "variable " + variable.name + " has no correlations: " + stats::StatusText(status) +
            (variable.IsCensored() ? " (it is " + CString(TypeText(variable.type)) +
                                         ", and its cases at the limits count as censored)"
                                   : CString()),
        variable.IsCensored()
            ? "Leave the variable out with SE, or treat it as ordinal with an OR line."
            : "Leave the variable out with SE.");
    return false;
  }
  return true;
}

bool CheckPairs(const ENGINERUN& run, const SCREENVARIABLES& variables,
                const stats::NormalPairs& pairs, FAULT& fault) {
  for (std::size_t i = 1; i < variables.all.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (!pairs.Has(i, j) || pairs.Pair(i, j).status == stats::EStatus::Ok) continue;
      fault = OutputFault(run,
                          "the correlation of " + variables.all[j].name + " and " +
                              variables.all[i].name + " cannot be estimated: " +
                              PairStatusText(pairs.Pair(i, j).status, pairs.Pair(i, j).r),
                          "Leave one of the two variables out with SE.");
      return false;
    }
  }
  return true;
}

// This process estimates its share of the pairs and gets the others'.
bool EstimateShare(ENGINERUN& run, const SCREENVARIABLES& variables, const COLUMNSTORE& store,
                   stats::NormalPairs& pairs, FAULT& fault) {
  struct PAIR {
    std::size_t i, j;
  };
  std::vector<PAIR> work;
  std::vector<std::size_t> places;
  for (std::size_t i = 1; i < variables.all.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (!pairs.Has(i, j)) continue;
      work.push_back({i, j});
      places.push_back(
          static_cast<std::size_t>(stats::PairIndex(static_cast<int>(i), static_cast<int>(j))));
    }
  }
  const auto column = [&](std::size_t i) {
    return ColumnOf(variables.all[i], pairs.margins[i], store);
  };
  const auto part = static_cast<std::size_t>(run.Part());
  const auto parts = static_cast<std::size_t>(run.Parts());
  const std::size_t share = (work.size() + parts - 1 - part) / parts;
  pairs.pairs.resize(
      static_cast<std::size_t>(stats::PairIndex(static_cast<int>(variables.all.size()), 0)));
  std::mutex telling;
  std::size_t estimated = 0;
  stats::ParallelFor(run.threads, static_cast<std::int64_t>(share), [&](std::int64_t k) {
    const std::size_t at = static_cast<std::size_t>(k) * parts + part;
    pairs.pairs[places[at]] = stats::EstimateNormalPair(column(work[at].i), column(work[at].j),
                                                        store.Cases(), store.Weights());
    const std::lock_guard<std::mutex> hold(telling);
    run.progress.Tell(static_cast<double>(++estimated) / static_cast<double>(share));
  });
  run.progress.NextStage();
  return ShareNormalPairs(run, places, pairs.pairs, fault);
}

}  // namespace

bool EstimateCensoredPairs(ENGINERUN& run, const SCREENVARIABLES& variables,
                           const ONEVARIABLERESULTS& results, const stats::CPairTables* tables,
                           stats::NormalPairs& pairs, FAULT& fault) {
  pairs = stats::NormalPairs();
  if (!variables.HasCensored()) return true;
  for (const SCREENVARIABLE& variable : variables.all) {
    pairs.censored.push_back(variable.IsCensored());
    pairs.margins.push_back(MarginOf(variable, results, tables));
  }
  COLUMNSTORE store;
  std::int64_t megabytes = 0;
  if (!CheckMargins(run, variables, pairs, fault) ||
      !HoldColumns(run, variables, "correlations with censored variables", store, megabytes,
                   fault)) {
    return false;
  }
  if (!EstimateShare(run, variables, store, pairs, fault)) return false;
  run.report.Gap();
  run.report.Paragraph("For the correlations with censored variables " + std::to_string(megabytes) +
                       " MB of cases were held in memory.");
  return CheckPairs(run, variables, pairs, fault);
}
