#include "engine/procedures/HomogeneityTest.h"

#include "engine/procedures/OrdinalTables.h"
#include "engine/stats/Homogeneity.h"

namespace {

void WriteMargins(ENGINERUN& run, const COrdinalTables& data,
                  const stats::HomogeneityResult& result) {
  TABLE table;
  table.columns = {{"Category", true},    {data.Name(0), false}, {"Percent", false},
                   {data.Name(1), false}, {"Percent", false},    {"Difference", false}};
  constexpr double kPercent = 100;
  for (std::size_t a = 0; a < result.row.size(); ++a) {
    const double first = kPercent * result.row[a] / result.n;
    const double second = kPercent * result.column[a] / result.n;
    table.rows.push_back({CategoryText(data.Values()[a]), CReport::Count(result.row[a]),
                          CReport::Number(first, 1), CReport::Count(result.column[a]),
                          CReport::Number(second, 1), CReport::Number(first - second, 1)});
  }
  run.report.Subsection("Distributions (n = " + CReport::Count(result.n) + ")");
  run.report.Table(table);
}

}  // namespace

bool RunHomogeneityTest(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  const auto& ht = std::get<HOMOGENEITY>(procedure.what);
  COrdinalTables data(run, procedure);
  if (!data.Read({ht.first, ht.second}, fault)) return false;
  run.report.Section("Homogeneity test for " + data.Name(0) + " and " + data.Name(1));
  const auto result = stats::TestHomogeneity(data.Tables().Table(0, 1));
  if (result.status != stats::EStatus::Ok) {
    fault = ProcedureFault(procedure,
                           "the homogeneity of " + data.Name(0) + " and " + data.Name(1) +
                               " cannot be tested: " +
                               (result.status == stats::EStatus::Boundary
                                    ? CString("too few cases have different categories in the two")
                                    : CString(stats::StatusText(result.status))),
                           "Join categories with RC, or choose other variables.");
    return false;
  }
  WriteMargins(run, data, result);
  CReport& report = run.report;
  TABLE table;
  table.columns = {{"Test", true}, {"Chi-square", false}, {"df", false}, {"p", false}};
  table.rows.push_back({"Equal distributions (Stuart-Maxwell)", report.Number(result.stuartMaxwell),
                        std::to_string(result.df), CReport::Probability(result.pStuartMaxwell)});
  table.rows.push_back({"Equal distributions (Bhapkar)", report.Number(result.bhapkar),
                        std::to_string(result.df), CReport::Probability(result.pBhapkar)});
  table.rows.push_back({"Symmetry of the table (Bowker)", report.Number(result.bowker),
                        std::to_string(result.dfBowker), CReport::Probability(result.pBowker)});
  report.Subsection("Tests");
  report.Table(table);
  return true;
}
