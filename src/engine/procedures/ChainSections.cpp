#include "engine/procedures/ChainSections.h"

#include <algorithm>
#include <cmath>

namespace {

using Eigen::Index;

class CChainSections {
 public:
  CChainSections(ENGINERUN& run, const MULTIPLEIMPUTATION& line, const IMPUTEDVALUES& values)
      : run_(run), report_(run.report), line_(line), values_(values) {}

  void WriteConvergence() {
    CFactTable facts;
    facts.Add("Completed data sets (RP)", std::to_string(line_.dataSets));
    facts.Add("Iterations of each chain (IT)", std::to_string(line_.iterations));
    facts.Add("Seed", std::to_string(static_cast<std::int64_t>(run_.seed)));
    facts.Add("Missing values drawn", std::to_string(values_.sample->MissingValues()));
    facts.Add("Cases held in memory", std::to_string(values_.sample->Held()));
    report_.Subsection("Chains");
    facts.Write(report_);
    if (line_.iterations < kFewestForWindows) {
      report_.Warning(
          "The chains are too short for checks of their convergence: ask for at least " +
          std::to_string(kFewestForWindows) + " iterations (IT).");
      return;
    }
    TABLE table;
    table.narrowest = static_cast<std::size_t>(report_.Numbers().width);
    table.columns = {{"Variable", true},  {"Missing", false}, {"Mean", false},
                     {"St. dev.", false}, {"R: mean", false}, {"R: variance", false}};
    std::vector<CString> apart;
    const auto p = static_cast<Index>(values_.variables.size());
    for (Index j = 0; j < p; ++j) AddConvergenceRow(j, table, apart);
    report_.Subsection("Draws of means and standard deviations, second half of the chains");
    report_.Paragraph(
        "R is the potential scale reduction over the third and last quarter of all chains, near 1 "
        "when they agree. Ordinal variables: of the underlying variable.");
    report_.Gap();
    report_.Table(table);
    if (!apart.empty()) {
      report_.Warning("The chains have not come together (R above 1.2) for " + CommaList(apart) +
                      ": ask for more iterations (IT).");
    }
  }

  void AddConvergenceRow(Index j, TABLE& table, std::vector<CString>& apart) {
    const INCOMPLETEVARIABLE& one = values_.variables[static_cast<std::size_t>(j)];
    const auto p = static_cast<Index>(values_.variables.size());
    double mean = 0, variance = 0;
    for (const stats::AugmentationChain& chain : values_.chains) {
      for (const auto& window : chain.windows) {
        mean += window.average(j);
        variance += window.average(p + j);
      }
    }
    const auto windows = static_cast<double>(2 * values_.chains.size());
    double r[2];
    for (int k = 0; k < 2; ++k) {
      r[k] = stats::PotentialScaleReduction(values_.chains, j + k * p,
                                            static_cast<int>(line_.iterations));
    }
    constexpr double kApart = 1.2;
    if (r[0] > kApart || r[1] > kApart) apart.push_back(one.name);
    const double deviation = one.scale * std::sqrt(variance / windows);
    const double error = deviation / std::sqrt(values_.sample->N());
    table.rows.push_back({one.name, std::to_string(one.missing),
                          report_.Estimate(one.center + one.scale * mean / windows, error),
                          report_.Estimate(deviation, error), report_.Number(r[0]),
                          report_.Number(r[1])});
  }

  // The numbers of a plot of the chains, and how long they remember.
  void WritePlot() {
    const auto& chains = values_.chains;
    const double first = stats::Autocorrelation(chains, 1);
    if (std::isnan(first)) return;  // EM has not moved, or one iteration
    report_.Subsection("Convergence plot: the direction in which EM converges most slowly");
    TABLE table;
    constexpr std::size_t kShownChains = 5;
    constexpr std::int64_t kPoints = 20;
    table.columns.push_back({"Iteration", false});
    const std::size_t shown = std::min(kShownChains, chains.size());
    for (std::size_t c = 0; c < shown; ++c)
      table.columns.push_back({"Chain " + std::to_string(c + 1), false});
    const std::int64_t length = line_.iterations;
    const std::int64_t points = std::min(kPoints, length);
    for (std::int64_t k = 1; k <= points; ++k) {
      const std::int64_t at = k * length / points;
      std::vector<CString> row = {std::to_string(at)};
      for (std::size_t c = 0; c < shown; ++c)
        row.push_back(report_.Number(chains[c].watched[static_cast<std::size_t>(at - 1)]));
      table.rows.push_back(std::move(row));
    }
    report_.Table(table);
    report_.Subsection("Its correlation with itself so many iterations later");
    TABLE lags;
    lags.columns = {{"Lag", false}, {"Correlation", false}};
    for (const std::size_t lag : {1, 2, 5, 10, 20, 50, 100}) {
      if (static_cast<std::int64_t>(2 * lag) > length) break;
      lags.rows.push_back(
          {std::to_string(lag), report_.Number(stats::Autocorrelation(chains, lag))});
    }
    report_.Table(lags);
  }

 private:
  static constexpr std::int64_t kFewestForWindows = 8;

  ENGINERUN& run_;
  CReport& report_;
  const MULTIPLEIMPUTATION& line_;
  const IMPUTEDVALUES& values_;
};

}  // namespace

void WriteChains(ENGINERUN& run, const MULTIPLEIMPUTATION& line, const IMPUTEDVALUES& values) {
  CChainSections sections(run, line, values);
  sections.WriteConvergence();
  sections.WritePlot();
}
