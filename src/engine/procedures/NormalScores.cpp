#include "engine/procedures/NormalScores.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>

#include "engine/procedures/ProcedureReport.h"
#include "engine/screen/CasesSections.h"
#include "engine/stats/Thresholds.h"
#include "engine/stats/Univariate.h"
#include "vexutils/FreeMemory.h"

namespace {

// The distinct values of a variable and what becomes of them.
struct SCORES {
  std::vector<double> values, frequencies, scores;

  double ScoreOf(double value) const {
    const auto at = std::lower_bound(values.begin(), values.end(), value);
    return at != values.end() && *at == value
               ? scores[static_cast<std::size_t>(at - values.begin())]
               : std::numeric_limits<double>::quiet_NaN();
  }
};

struct WEIGHTEDVALUE {
  double value, weight;
};

bool ReadValues(ENGINERUN& run, std::int32_t variable, SCORES& scores, FAULT& fault) {
  run.source.SetColumns({{variable, {}}});
  run.source.SetListwise(true);
  std::vector<WEIGHTEDVALUE> all;
  const bool done = run.Pass(
      run.source,
      [&all](const CASEBLOCK& block) {
        for (std::int64_t k = 0; k < block.cells.cases; ++k) {
          all.push_back({block.cells.cells[k * block.cells.stride],
                         block.cells.weights != nullptr ? block.cells.weights[k] : 1});
        }
      },
      fault);
  if (!done) return false;
  std::stable_sort(all.begin(), all.end(), [](const WEIGHTEDVALUE& a, const WEIGHTEDVALUE& b) {
    return a.value < b.value;
  });
  for (const WEIGHTEDVALUE& one : all) {
    if (scores.values.empty() || scores.values.back() != one.value) {
      scores.values.push_back(one.value);
      scores.frequencies.push_back(0);
    }
    scores.frequencies.back() += one.weight;
  }
  return true;
}

void AddRows(const CReport& report, const CString& name, const SCORES& scores, TABLE& table) {
  const double n = std::accumulate(scores.frequencies.begin(), scores.frequencies.end(), 0.0);
  const auto add = [&](const CString& what, const std::vector<double>& values) {
    const auto one = stats::DescribeColumn(values.data(), static_cast<std::int64_t>(values.size()),
                                           scores.frequencies.data());
    // Values whose squares are no doubles have no moments.
    const auto number = [&](double moment) {
      return one.status == stats::EStatus::Ok ? report.Number(moment) : CString(".");
    };
    table.rows.push_back({what, CReport::Count(n), std::to_string(scores.values.size()),
                          number(one.mean), number(one.sd), number(one.g1), number(one.g2)});
  };
  add(name + ", values", scores.values);
  add(name + ", scores", scores.scores);
}

}  // namespace

bool RunNormalScores(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  const auto& ns = std::get<NORMALSCORES>(procedure.what);
  CReport& report = run.report;
  const auto bytes = static_cast<std::int64_t>(sizeof(WEIGHTEDVALUE) * (2 + ns.variables.size())) *
                     run.file.Records();
  if (bytes > FreeMemoryBytes()) {
    fault = ProcedureFault(procedure,
                           "normal scores need up to " + std::to_string(bytes >> 20) +
                               " MB of memory for the values of the variables",
                           "Name fewer variables in one run.");
    return false;
  }
  CASECOUNTS cases;
  auto all = std::make_shared<std::vector<SCORES>>();
  TABLE table;
  table.columns = {{"Variable", true},  {"n", false},        {"Distinct", false}, {"Mean", false},
                   {"St. dev.", false}, {"Skewness", false}, {"Kurtosis", false}};
  for (const std::int32_t variable : ns.variables) {
    SCORES scores;
    if (!ReadValues(run, variable, scores, fault)) return false;
    const std::int64_t infinite = cases.infinite;
    cases = run.source.Counts();
    cases.infinite += infinite;
    fault = UnusableCasesFault(run.job, cases);
    if (fault) return false;
    const auto result = stats::ComputeNormalScores(scores.values, scores.frequencies);
    if (result.status != stats::EStatus::Ok) {
      fault = ProcedureFault(procedure,
                             "variable " + ShownName(run.job.data, variable) +
                                 " has no normal scores: " + stats::StatusText(result.status),
                             "Leave it out of the list.");
      return false;
    }
    scores.scores = result.rescaled;
    AddRows(report, ShownName(run.job.data, variable), scores, table);
    all->push_back(std::move(scores));
  }
  WriteOwnCasesSection(run, ns.variables.size(), cases);
  report.Section("Normal scores");
  report.Paragraph(
      "Each value is replaced by the mean of a normal variable within the value's interval of the "
      "cumulative distribution, brought to the variable's own mean and standard deviation. The "
      "distinct values were held in memory. The variables count as continuous from here on.");
  report.Gap();
  report.Table(table);
  if (run.files.Find("RA") == nullptr) {
    report.Warning("The scores are not saved: add RA=file to the output line.");
  }
  CASEFUNCTION function;
  function.inputs = function.outputs = ns.variables;
  function.compute = [all](const double* inputs, double* outputs) {
    for (std::size_t j = 0; j < all->size(); ++j) outputs[j] = (*all)[j].ScoreOf(inputs[j]);
  };
  run.job.transformations.emplace_back(std::move(function));
  for (const std::int32_t variable : ns.variables) {
    VARSTRUCT& record = run.job.data.variable[static_cast<std::size_t>(variable)];
    record.type = kContinuous;
    record.categories = 0;
  }
  return true;
}
