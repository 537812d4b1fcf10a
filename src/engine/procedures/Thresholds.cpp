#include "engine/procedures/Thresholds.h"

#include <cmath>

#include "engine/procedures/OrdinalTables.h"
#include "engine/run/Estimates.h"
#include "engine/screen/CasesSections.h"
#include "engine/screen/ThresholdFile.h"
#include "engine/stats/CommonThresholds.h"
#include "engine/stats/EqualThresholds.h"
#include "engine/stats/FixedThresholds.h"
#include "engine/stats/Thresholds.h"

namespace {

using stats::EStatus;

void AddThresholds(const CReport& report, const std::vector<double>& values,
                   const std::vector<double>& thresholds, const std::vector<double>& errors,
                   TABLE& table) {
  for (std::size_t t = 0; t < thresholds.size(); ++t) {
    table.rows.push_back({CategoryText(values[t]) + " | " + CategoryText(values[t + 1]),
                          report.Number(thresholds[t]),
                          errors.empty()             ? CString()
                          : std::isfinite(errors[t]) ? report.Number(errors[t])
                                                     : "."});
  }
}

void NoteThresholds(ENGINERUN& run, const CString& heading, const std::vector<double>& values,
                    const std::vector<double>& thresholds) {
  if (run.sampling == nullptr) return;
  ESTIMATES estimates = MakeEstimates(heading);
  for (std::size_t t = 0; t < thresholds.size(); ++t) {
    AddEstimate(estimates, CategoryText(values[t]) + " | " + CategoryText(values[t + 1]),
                thresholds[t]);
  }
  run.estimates->push_back(std::move(estimates));
}

TABLE ThresholdTable(const CReport& report) {
  TABLE table;
  table.narrowest = static_cast<std::size_t>(report.Numbers().width);
  table.columns = {{"Between", true}, {"Threshold", false}, {"Std. error", false}};
  return table;
}

FAULT EqualFault(const PROCEDURE& procedure, const COrdinalTables& data, EStatus status) {
  return ProcedureFault(
      procedure,
      CString("the equality of thresholds cannot be tested: ") +
          (status == EStatus::BadArgument
               ? "a category of " + data.Name(0) + " or another of the variables has no case"
               : CString(stats::StatusText(status))),
      "Join categories with RC so that each has cases in every variable.");
}

bool WritePairs(ENGINERUN& run, const PROCEDURE& procedure, const COrdinalTables& data,
                std::size_t variables, stats::EqualThresholdsResult& last, FAULT& fault) {
  CReport& report = run.report;
  TABLE table;
  table.repeated = 2;
  table.columns = {{"Variable", true}, {"Variable", true},    {"Correlation", false},
                   {"Equal", false},   {"Chi-square", false}, {"df", false},
                   {"p", false}};
  for (std::size_t i = 1; i < variables; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      last =
          stats::TestEqualThresholds(data.Tables().Table(static_cast<int>(j), static_cast<int>(i)));
      if (last.status != EStatus::Ok) {
        fault = EqualFault(procedure, data, last.status);
        return false;
      }
      table.rows.push_back({data.Name(j), data.Name(i), report.Number(last.rFree),
                            report.Number(last.r), report.Number(last.ratio),
                            std::to_string(last.df), CReport::Probability(last.p)});
    }
  }
  report.Paragraph(
      "Likelihood ratio of equal against free thresholds of two variables with an underlying "
      "bivariate normal distribution; thresholds and correlation are estimated together, the "
      "correlation once with free and once with equal thresholds.");
  report.Gap();
  report.Table(table);
  return true;
}

}  // namespace

bool RunEqualThresholds(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  const auto& et = std::get<EQUALTHRESHOLDS>(procedure.what);
  CReport& report = run.report;
  COrdinalTables data(run, procedure);
  if (!data.Read(et.variables, fault)) return false;
  report.Section("Equal thresholds of " + NameList(run.job.data, et.variables));
  stats::EqualThresholdsResult pair;
  if (!WritePairs(run, procedure, data, et.variables.size(), pair, fault)) return false;
  TABLE table = ThresholdTable(report);
  std::vector<double> common = pair.threshold;
  if (et.variables.size() == 2) {
    AddThresholds(report, data.Values(), pair.threshold, pair.standardError, table);
  } else {
    const auto all = stats::EstimateCommonThresholds(data.Tables());
    if (all.status != EStatus::Ok) {
      fault = EqualFault(procedure, data, all.status);
      return false;
    }
    common = all.threshold;
    AddThresholds(report, data.Values(), all.threshold, all.standardError, table);
    report.Gap();
    report.Paragraph(
        "All variables together (generalised least squares on the marginal "
        "thresholds): chi-square = " +
        report.Number(all.chiSquare) + ", df = " + std::to_string(all.df) +
        ", p = " + CReport::Probability(all.p));
  }
  report.Subsection("Common thresholds");
  report.Table(table);
  NoteThresholds(run, "Common thresholds", data.Values(), common);
  if (COutputFile* const file = run.files.Find("TH")) {
    for (const std::int32_t variable : et.variables)
      WriteThresholdLine(*file, ShownName(run.job.data, variable), common);
  }
  return true;
}

namespace {

// Ordinal variables, each on all of its cases.
class CMargins {
 public:
  CMargins(ENGINERUN& run, const PROCEDURE& procedure) : run_(run), procedure_(procedure) {}

  // The next variable: its categories that have cases. False with the reason in `fault`.
  bool Read(std::int32_t variable, VALUECOUNTS& counts, FAULT& fault) {
    const CString name = ShownName(run_.job.data, variable);
    run_.source.SetColumns({{variable, DefinedCategories(run_.job.data, variable)}});
    run_.source.SetListwise(true);
    CCensusTaker taker({true}, true, run_.threads);
    if (!run_.Pass(
            run_.source, [&taker](const CASEBLOCK& block) { taker.Add(block); }, fault)) {
      return false;
    }
    const std::int64_t infinite = cases_.infinite;
    cases_ = run_.source.Counts();
    if (cases_.otherCells > 0) warnings_.push_back(OtherValuesText(name, cases_.otherCells));
    cases_.infinite += infinite;
    counts = taker.Result().values[0];
    if (!counts.tooMany && counts.values.size() > 1) return true;
    fault = UnusableCasesFault(run_.job, cases_);
    if (!fault) fault = FaultOf(name, counts);
    return false;
  }

  // The section of the data, behind the last variable.
  void WriteData(std::size_t variables) const {
    WriteOwnCasesSection(run_, variables, cases_);
    for (const CString& warning : warnings_) run_.report.Warning(warning);
  }

 private:
  FAULT FaultOf(const CString& name, const VALUECOUNTS& counts) const {
    const CString cause =
        counts.tooMany
            ? " has more than " + std::to_string(VALUECOUNTS::kMostValues) + " different values"
        : counts.values.empty() ? CString(" has no value in any case")
                                : CString(" has one category only");
    return ProcedureFault(procedure_, "variable " + name + cause,
                          "Choose an ordinal variable, or make categories with RC.");
  }

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  CASECOUNTS cases_;
  std::vector<CString> warnings_;
};

// The defined categories with those that have no case.
VALUECOUNTS WithEmptyCategories(const TORVIKSTRUCT& data, std::int32_t variable,
                                VALUECOUNTS counts) {
  for (const double value : DefinedCategories(data, variable)) counts.Add(value, 0);
  return counts;
}

}  // namespace

bool RunMarginalThresholds(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  CReport& report = run.report;
  const auto& mt = std::get<MARGINALTHRESHOLDS>(procedure.what);
  CMargins margins(run, procedure);
  std::vector<VALUECOUNTS> all(mt.variables.size());
  for (std::size_t j = 0; j < all.size(); ++j) {
    if (!margins.Read(mt.variables[j], all[j], fault)) return false;
  }
  margins.WriteData(all.size());
  report.Section("Marginal thresholds");
  report.Paragraph(
      "Each variable's own, from all of its cases: normal quantiles of the cumulative "
      "proportions.");
  for (std::size_t j = 0; j < all.size(); ++j) {
    const VALUECOUNTS& counts = all[j];
    const auto result = stats::EstimateThresholds(counts.counts);
    TABLE table = ThresholdTable(report);
    AddThresholds(report, counts.values, result.threshold, result.standardError, table);
    run.job.givenThresholds.push_back({mt.variables[j], counts.values, result.threshold, true});
    const CString name = ShownName(run.job.data, mt.variables[j]);
    report.Subsection(name + "   (n = " + CReport::Count(result.n) + ")");
    report.Table(table);
    NoteThresholds(run, "Thresholds of " + name, counts.values, result.threshold);
    if (COutputFile* const file = run.files.Find("TH"))
      WriteThresholdLine(*file, name, result.threshold);
  }
  return true;
}

bool RunFixedThresholds(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  CReport& report = run.report;
  const std::int32_t variable = std::get<FIXTHRESHOLDS>(procedure.what).variable;
  const CString name = ShownName(run.job.data, variable);
  VALUECOUNTS counts;
  std::vector<double> thresholds;
  CString problem;
  if (!ReadThresholds(run.job.output.thresholdFile, name, thresholds, problem)) {
    fault = ProcedureFault(procedure, problem,
                           "Save thresholds of this variable with MT or ET and TH=, and name that "
                           "file.");
    return false;
  }
  CMargins margins(run, procedure);
  if (!margins.Read(variable, counts, fault)) return false;
  if (thresholds.size() + 1 != counts.values.size()) {
    counts = WithEmptyCategories(run.job.data, variable, std::move(counts));
  }
  if (thresholds.size() + 1 != counts.values.size()) {
    fault =
        ProcedureFault(procedure,
                       "the file holds " + std::to_string(thresholds.size()) + " thresholds, and " +
                           name + " has " + std::to_string(counts.values.size()) + " categories",
                       "Use a file that was saved for a variable with these categories.");
    return false;
  }
  const auto result = stats::EstimateUnderThresholds(counts.counts, thresholds);
  if (result.status != EStatus::Ok) {
    fault = ProcedureFault(
        procedure,
        "the thresholds of " + name + " cannot be fixed: " +
            (result.status == EStatus::BadArgument ? "those of the file do not ascend"
             : result.status == EStatus::Boundary
                 ? "all cases lie in two neighbouring categories, so that the standard deviation "
                   "has no estimate"
                 : stats::StatusText(result.status)),
        "Use another file of thresholds, or join categories with RC.");
    return false;
  }
  run.job.givenThresholds.push_back({variable, counts.values, thresholds, false});
  margins.WriteData(1);
  report.Section("Fixed thresholds of " + name);
  TABLE table = ThresholdTable(report);
  table.columns.back().heading = "Own threshold";
  AddThresholds(report, counts.values, thresholds,
                stats::EstimateThresholds(counts.counts).threshold, table);
  report.Table(table);
  report.Subsection("The underlying normal variable under these thresholds (n = " +
                    CReport::Count(result.n) + ")");
  TABLE moments;
  moments.columns = {{"", true}, {"Estimate", false}, {"Std. error", false}};
  moments.rows = {{"Mean", report.Number(result.mean), report.Number(result.meanError)},
                  {"Standard deviation", report.Number(result.sd),
                   result.sdError > 0 ? report.Number(result.sdError) : "(fixed)"}};
  report.Table(moments);
  report.Subsection("Tests against the observed frequencies");
  TABLE tests;
  tests.columns = {{"Model", true}, {"Chi-square", false}, {"df", false}, {"p", false}};
  const auto add = [&](const char* what, const stats::FixedThresholdsResult::Test& test) {
    tests.rows.push_back({what, report.Number(test.likelihoodRatio), std::to_string(test.df),
                          test.df > 0 ? CReport::Probability(test.p) : "."});
  };
  add("Normal with this mean and standard deviation", result.fitted);
  add("Standard normal: these thresholds are its own", result.standard);
  report.Table(tests);
  return true;
}
