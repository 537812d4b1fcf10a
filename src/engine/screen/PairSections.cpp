#include "engine/screen/PairSections.h"

#include "engine/screen/Faults.h"

namespace {

const SCREENVARIABLE& Ordinal(const SCREENVARIABLES& variables, int place) {
  return variables.all[variables.ordinal[static_cast<std::size_t>(place)]];
}

void WriteTable(CReport& report, const SCREENVARIABLE& row, const SCREENVARIABLE& column,
                const stats::FrequencyTable& counts) {
  TABLE table;
  table.columns.push_back({row.name, false});
  for (const double value : column.values.values) {
    table.columns.push_back({CategoryText(value), false});
  }
  table.columns.push_back({"Total", false});
  for (int i = 0; i < counts.rows; ++i) {
    std::vector<CString> cells = {CategoryText(row.values.values[static_cast<std::size_t>(i)])};
    double total = 0;
    for (int j = 0; j < counts.columns; ++j) {
      total += counts.At(i, j);
      cells.push_back(CReport::Count(counts.At(i, j)));
    }
    cells.push_back(CReport::Count(total));
    table.rows.push_back(std::move(cells));
  }
  report.Subsection(row.name + " by " + column.name);
  report.Table(table);
}

}  // namespace

void WriteBivariateTables(ENGINERUN& run, const SCREENVARIABLES& variables,
                          const stats::CPairTables& tables) {
  run.report.Section("Bivariate frequency tables");
  for (int i = 1; i < tables.Variables(); ++i) {
    for (int j = 0; j < i; ++j) {
      WriteTable(run.report, Ordinal(variables, j), Ordinal(variables, i), tables.Table(j, i));
    }
  }
}

void WriteBivariateTests(ENGINERUN& run, const SCREENVARIABLES& variables,
                         const stats::CPairTables& tables, const stats::PolychoricMatrix& matrix) {
  CReport& report = run.report;
  report.Section("Polychoric correlations and tests of underlying bivariate normality");
  report.Paragraph(
      "Chi-square is the likelihood ratio of the bivariate normal model against the "
      "free table.");
  report.Gap();
  TABLE table;
  table.columns = {{"Variable", true},     {"Variable", true}, {"n", false},
                   {"Correlation", false}, {"s.e.", false},    {"Chi-square", false},
                   {"df", false},          {"p", false},       {"RMSEA", false}};
  table.repeated = 2;
  int withEmptyCells = 0;
  for (int i = 1; i < tables.Variables(); ++i) {
    for (int j = 0; j < i; ++j) {
      const SCREENVARIABLE& first = Ordinal(variables, j);
      const SCREENVARIABLE& second = Ordinal(variables, i);
      const auto& pair = matrix.pairs[static_cast<std::size_t>(stats::PairIndex(i, j))];
      withEmptyCells += pair.emptyCells > 0 ? 1 : 0;
      std::vector<CString> row = {first.name, second.name, CReport::Count(pair.n)};
      if (pair.status != stats::EStatus::Ok) {
        row.insert(row.end(), 6, ".");
        table.rows.push_back(std::move(row));
        if (pair.status != stats::EStatus::OneCategory) {
          report.Warning("The correlation of " + first.name + " and " + second.name +
                         " has no estimate: " + PairStatusText(pair.status, pair.r) + ".");
        }
        continue;
      }
      const stats::TableTest test = stats::TestUnderlyingNormality(
          tables.Table(i, j), matrix.thresholds[static_cast<std::size_t>(i)].threshold,
          matrix.thresholds[static_cast<std::size_t>(j)].threshold, pair.r);
      row.push_back(report.Number(pair.r));
      row.push_back(report.Number(pair.standardError));
      if (test.status == stats::EStatus::Ok) {
        row.insert(row.end(),
                   {report.Number(test.likelihoodRatio), std::to_string(test.df),
                    CReport::Probability(test.pLikelihoodRatio), report.Number(test.rmsea)});
      } else {
        row.insert(row.end(), {".", std::to_string(test.df), ".", "."});
      }
      table.rows.push_back(std::move(row));
    }
  }
  report.Table(table);
  if (withEmptyCells > 0) {
    const CString of = std::to_string(withEmptyCells) + " of " +
                       std::to_string(matrix.pairs.size()) +
                       (matrix.pairs.size() == 1 ? " pair" : " pairs");
    report.Warning((withEmptyCells == 1
                        ? "The table of " + of + " has empty cells. Nothing was added to it."
                        : "The tables of " + of + " have empty cells. Nothing was added to them."));
  }
}

void WriteMultivariateTests(ENGINERUN& run, const stats::MardiaResult& result) {
  CReport& report = run.report;
  report.Section("Tests of multivariate normality for continuous variables");
  if (result.status != stats::EStatus::Ok) {
    report.Paragraph(CString("Not computed: ") + stats::StatusText(result.status) + ".");
    NoteOutputFault(run,
                    CString("the tests of multivariate normality cannot be computed: ") +
                        stats::StatusText(result.status),
                    "Leave them out with XM, or select variables that are no sums of each other "
                    "and fewer than the cases.");
    return;
  }
  report.Line("  Variables: " + std::to_string(result.p) + "   n = " + CReport::Count(result.n));
  report.Gap();
  TABLE table;
  table.columns = {{"", true},    {"Coefficient", false},
                   {"z", false},  {"Chi-square", false},
                   {"df", false}, {"p", false}};
  table.rows.push_back({"Skewness", report.Number(result.skewness), report.Number(result.zSkewness),
                        report.Number(result.chiSquareSkewness), CReport::Count(result.dfSkewness),
                        CReport::Probability(result.pSkewness)});
  table.rows.push_back({"Kurtosis", report.Number(result.kurtosis), report.Number(result.zKurtosis),
                        "", "", CReport::Probability(result.pKurtosis)});
  table.rows.push_back({"Both", "", "", report.Number(result.chiSquareJoint), "2",
                        CReport::Probability(result.pJoint)});
  report.Table(table);
  report.Gap();
  report.Line("  Relative multivariate kurtosis: " + report.Number(result.relativeKurtosis));
}
