#include "engine/procedures/Eigenvalues.h"

#include <algorithm>
#include <cmath>

#include "engine/run/Estimates.h"

namespace {

using Eigen::Index;

bool IsKnown(const std::optional<stats::ParallelAnalysisResult>& chance) {
  return chance && chance->mean.size() > 0;
}

void WriteScree(CReport& report, const Eigen::VectorXd& eigenvalues,
                const std::optional<stats::ParallelAnalysisResult>& chance) {
  constexpr double kLongest = 50;
  const double largest = eigenvalues.maxCoeff();
  if (!(largest > 0)) return;
  report.Subsection(IsKnown(chance) ? "Scree listing (| marks what chance exceeds in 5% of samples)"
                                    : "Scree listing");
  TABLE table;
  table.columns = {{"", false}, {"", false}, {"", true}};
  for (Index j = 0; j < eigenvalues.size(); ++j) {
    const auto place = [&](double value) {
      return static_cast<std::size_t>(std::max(0.0, std::round(kLongest * value / largest)));
    };
    CString bar(place(eigenvalues(j)), '*');
    if (IsKnown(chance)) {
      const std::size_t mark = std::min<std::size_t>(place(chance->percentile95(j)), kLongest);
      bar.resize(std::max(bar.size(), mark + 1), ' ');
      bar[mark] = '|';
    }
    table.rows.push_back({std::to_string(j + 1), report.Number(eigenvalues(j)), std::move(bar)});
  }
  report.Table(table);
}

}  // namespace

CString ParallelAnalysisText(const ENGINERUN& run, bool ofCorrelations) {
  return "Parallel analysis: " + std::to_string(kChanceSamples) +
         " samples of independent normal variables" +
         (ofCorrelations ? "" : " with the variances of these") + ", seed " +
         std::to_string(run.seed) + ".";
}

void WriteEigenvalues(ENGINERUN& run, const Eigen::VectorXd& eigenvalues,
                      const std::optional<stats::ParallelAnalysisResult>& chance) {
  constexpr double kPercent = 100;
  CReport& report = run.report;
  TABLE table;
  table.columns = {
      {"Number", false}, {"Eigenvalue", false}, {"Percent", false}, {"Cumulative", false}};
  if (IsKnown(chance)) {
    table.columns.push_back({"Chance: mean", false});
    table.columns.push_back({"95th percentile", false});
  }
  const double total = eigenvalues.sum();
  double sum = 0;
  for (Index j = 0; j < eigenvalues.size(); ++j) {
    sum += eigenvalues(j);
    std::vector<CString> row = {std::to_string(j + 1), report.Number(eigenvalues(j)),
                                CReport::Number(kPercent * eigenvalues(j) / total, 2),
                                CReport::Number(kPercent * sum / total, 2)};
    if (IsKnown(chance)) {
      row.push_back(report.Number(chance->mean(j)));
      row.push_back(report.Number(chance->percentile95(j)));
    }
    table.rows.push_back(std::move(row));
  }
  report.Subsection("Eigenvalues");
  report.Table(table);
  WriteScree(report, eigenvalues, chance);
}

ESTIMATES EigenvalueEstimates(const Eigen::VectorXd& eigenvalues) {
  ESTIMATES estimates = MakeEstimates("Eigenvalues");
  for (Index j = 0; j < eigenvalues.size(); ++j)
    AddEstimate(estimates, std::to_string(j + 1), eigenvalues(j));
  return estimates;
}
