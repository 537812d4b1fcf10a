#include "engine/screen/OneVariable.h"

#include "engine/screen/Faults.h"
#include "engine/stats/NormalityTests.h"

namespace {

void WriteCategories(ENGINERUN& run, const SCREENVARIABLE& variable,
                     const stats::ThresholdResult& thresholds) {
  CReport& report = run.report;
  TABLE table;
  table.columns = {{"Category", true}, {"Label", true},      {"Frequency", false},
                   {"Percent", false}, {"Threshold", false}, {"Standard error", false}};
  constexpr double kPercent = 100;
  bool labels = false;
  for (std::size_t k = 0; k < variable.values.values.size(); ++k) {
    const CString label = CategoryLabel(run.job.data, variable, variable.values.values[k]);
    labels = labels || !label.empty();
    std::vector<CString> row = {
        CategoryText(variable.values.values[k]), label, CReport::Count(variable.values.counts[k]),
        CReport::Number(kPercent * variable.values.counts[k] / thresholds.n, 1)};
    if (k < thresholds.threshold.size()) {
      row.push_back(report.Number(thresholds.threshold[k]));
      row.push_back(report.Number(thresholds.standardError[k]));
    }
    table.rows.push_back(std::move(row));
  }
  if (!labels) {
    table.columns.erase(table.columns.begin() + 1);
    for (auto& row : table.rows) row.erase(row.begin() + 1);
  }
  report.Subsection(variable.name + "   (n = " + CReport::Count(thresholds.n) + ")");
  report.Table(table);
}

}  // namespace

stats::ECensoring CensoringOf(std::int32_t type) {
  return type == kCensoredAbove   ? stats::ECensoring::Above
         : type == kCensoredBelow ? stats::ECensoring::Below
                                  : stats::ECensoring::Both;
}

ONEVARIABLERESULTS DescribeVariables(const SCREENVARIABLES& variables,
                                     const stats::CUnivariate* univariate) {
  ONEVARIABLERESULTS results;
  for (const std::size_t i : variables.numeric) {
    const SCREENVARIABLE& variable = variables.all[i];
    results.numeric.push_back(univariate->Result(variable.place));
    results.censored.emplace_back();
    if (variable.IsCensored()) {
      results.censored.back() = stats::EstimateCensored(
          stats::SumsAtRange(results.numeric.back(), CensoringOf(variable.type)));
    }
  }
  for (const std::size_t i : variables.ordinal) {
    results.thresholds.push_back(stats::EstimateThresholds(variables.all[i].values.counts));
  }
  return results;
}

void WriteOrdinalSection(ENGINERUN& run, const SCREENVARIABLES& variables,
                         const ONEVARIABLERESULTS& results) {
  if (variables.ordinal.empty()) return;
  run.report.Section("Ordinal variables: frequencies and thresholds");
  run.report.Paragraph(
      "A threshold is the normal quantile of the proportion of cases up to and "
      "including its category.");
  for (const std::size_t i : variables.ordinal) {
    const SCREENVARIABLE& variable = variables.all[i];
    const auto& thresholds = results.thresholds[static_cast<std::size_t>(variable.place)];
    WriteCategories(run, variable, thresholds);
    if (thresholds.status != stats::EStatus::Ok) {
      NoteVariableFault(run, variable, thresholds.status);
    }
  }
}

void WriteContinuousSection(ENGINERUN& run, const SCREENVARIABLES& variables,
                            const ONEVARIABLERESULTS& results) {
  if (variables.numeric.empty()) return;
  CReport& report = run.report;
  TABLE summary;
  summary.columns = {{"Variable", true},  {"n", false},        {"Mean", false},
                     {"St. dev.", false}, {"Skewness", false}, {"Kurtosis", false}};
  TABLE range;
  range.columns = {{"Variable", true},
                   {"Minimum", false},
                   {"Frequency", false},
                   {"Maximum", false},
                   {"Frequency", false}};
  TABLE tests;
  tests.columns = {{"Variable", true}, {"z skewness", false}, {"p", false}, {"z kurtosis", false},
                   {"p", false},       {"Chi-square", false}, {"p", false}};
  for (const std::size_t i : variables.numeric) {
    const SCREENVARIABLE& variable = variables.all[i];
    const auto& one = results.numeric[static_cast<std::size_t>(variable.place)];
    const bool spread = one.status == stats::EStatus::Ok;
    // Of values beyond the range of numbers nothing is known.
    const bool known = one.status != stats::EStatus::NotFinite;
    const auto number = [&](double value) { return known ? report.Number(value) : CString("."); };
    const auto count = [&](double value) { return known ? CReport::Count(value) : CString("."); };
    summary.rows.push_back({variable.name, count(one.n), number(one.mean), number(one.sd),
                            spread ? report.Number(one.g1) : ".",
                            spread ? report.Number(one.g2) : "."});
    range.rows.push_back({variable.name, number(one.minimum), count(one.minimumFrequency),
                          number(one.maximum), count(one.maximumFrequency)});
    if (variable.type == kFixed) continue;
    if (!spread) NoteVariableFault(run, variable, one.status);
    const stats::NormalityTest test = stats::TestNormality(one);
    if (test.status == stats::EStatus::Ok) {
      tests.rows.push_back({variable.name, report.Number(test.zSkewness),
                            CReport::Probability(test.pSkewness), report.Number(test.zKurtosis),
                            CReport::Probability(test.pKurtosis), report.Number(test.chiSquare),
                            CReport::Probability(test.pChiSquare)});
    } else {
      tests.rows.push_back({variable.name, ".", ".", ".", ".", ".", "."});
    }
  }
  report.Section("Continuous variables");
  report.Paragraph(
      "Standard deviations have the divisor n - 1; skewness and kurtosis have the "
      "divisor n, and the kurtosis of a normal variable is 0.");
  report.Gap();
  report.Table(summary);
  report.Subsection("Range");
  report.Table(range);
  if (tests.rows.empty()) return;
  report.Subsection("Tests of univariate normality (chi-square: both together, 2 df)");
  report.Table(tests);
  for (const std::size_t i : variables.numeric) {
    const SCREENVARIABLE& variable = variables.all[i];
    const auto& one = results.numeric[static_cast<std::size_t>(variable.place)];
    if (variable.type != kFixed && one.status == stats::EStatus::Ok &&
        stats::TestNormality(one).status != stats::EStatus::Ok) {
      report.Warning("There are too few cases to test the normality of " + variable.name + ".");
    }
  }
}

void WriteCensoredSection(ENGINERUN& run, const SCREENVARIABLES& variables,
                          const ONEVARIABLERESULTS& results) {
  CReport& report = run.report;
  TABLE table;
  table.columns = {{"Variable", true},    {"Censored", true}, {"At minimum", false},
                   {"At maximum", false}, {"Mean", false},    {"s.e.", false},
                   {"St. dev.", false},   {"s.e.", false}};
  for (const std::size_t i : variables.numeric) {
    const SCREENVARIABLE& variable = variables.all[i];
    if (!variable.IsCensored()) continue;
    const auto& result = results.censored[static_cast<std::size_t>(variable.place)];
    const CString which = CString(TypeText(variable.type)).substr(sizeof "censored");
    if (result.status != stats::EStatus::Ok) {
      table.rows.push_back({variable.name, which, ".", ".", ".", ".", ".", "."});
      NoteVariableFault(run, variable, result.status);
      continue;
    }
    table.rows.push_back({variable.name, which, CReport::Count(result.below),
                          CReport::Count(result.above), report.Number(result.mean),
                          report.Number(result.seMean), report.Number(result.sd),
                          report.Number(result.seSd)});
  }
  if (table.rows.empty()) return;
  report.Section("Censored variables: maximum likelihood mean and standard deviation");
  report.Table(table);
}
