#include "engine/screen/CensoredPairs.h"

#include <algorithm>

#include "engine/screen/ColumnStore.h"
#include "engine/screen/Faults.h"
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
                              variables.all[i].name +
                              " cannot be estimated: " + stats::StatusText(pairs.Pair(i, j).status),
                          "Leave one of the two variables out with SE.");
      return false;
    }
  }
  return true;
}

}  // namespace

bool EstimateCensoredPairs(ENGINERUN& run, const SCREENVARIABLES& variables,
                           const ONEVARIABLERESULTS& results, const stats::CPairTables* tables,
                           stats::NormalPairs& pairs, FAULT& fault) {
  pairs = stats::NormalPairs();
  if (std::none_of(variables.all.begin(), variables.all.end(),
                   [](const SCREENVARIABLE& variable) { return variable.IsCensored(); })) {
    return true;
  }
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
  struct PLACES {
    std::size_t i, j;
  };
  std::vector<PLACES> work;
  for (std::size_t i = 1; i < variables.all.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (pairs.Has(i, j)) work.push_back({i, j});
    }
  }
  const auto count = static_cast<int>(variables.all.size());
  pairs.pairs.resize(static_cast<std::size_t>(stats::PairIndex(count, 0)));
  const auto column = [&](std::size_t i) {
    return ColumnOf(variables.all[i], pairs.margins[i], store);
  };
  stats::ParallelFor(run.threads, static_cast<std::int64_t>(work.size()), [&](std::int64_t k) {
    const auto [i, j] = work[static_cast<std::size_t>(k)];
    pairs.pairs[static_cast<std::size_t>(
        stats::PairIndex(static_cast<int>(i), static_cast<int>(j)))] =
        stats::EstimateNormalPair(column(i), column(j), store.Cases(), store.Weights());
  });
  run.report.Gap();
  run.report.Paragraph("For the correlations with censored variables " + std::to_string(megabytes) +
                       " MB of cases were held in memory.");
  return CheckPairs(run, variables, pairs, fault);
}
