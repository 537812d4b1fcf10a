#include "engine/procedures/OrdinalTables.h"

#include <algorithm>

#include "engine/data/Census.h"
#include "engine/screen/CasesSections.h"
#include "host/Numbers.h"

namespace {

CString ValueList(const std::vector<double>& values) {
  CString text;
  for (const double value : values) text += (text.empty() ? "" : " ") + FormatShortest(value);
  return text.empty() ? "none" : text;
}

}  // namespace

bool COrdinalTables::FindCategories(FAULT& fault) {
  std::vector<CASECOLUMN> columns;
  for (const std::int32_t variable : variables_) {
    columns.push_back({variable, DefinedCategories(run_.job.data, variable)});
  }
  run_.source.SetColumns(columns);
  run_.source.SetListwise(true);
  CCensusTaker taker(std::vector<bool>(variables_.size(), true), true, run_.threads);
  if (!run_.Pass(
          run_.source, [&taker](const CASEBLOCK& block) { taker.Add(block); }, fault)) {
    return false;
  }
  const CENSUS census = taker.Result();
  WriteDataHeading(run_, variables_.size(), DeletionText(true));
  WriteListwiseCases(run_, run_.source.Counts());
  if (run_.source.Counts().used == 0) {
    fault = UnusableCasesFault(run_.job, run_.source.Counts());
    if (!fault) {
      fault = ProcedureFault(procedure_, "no case has values of all the variables",
                             "Choose other variables, or change the selection of cases.");
    }
    return false;
  }
  for (std::size_t j = 0; j < variables_.size(); ++j) {
    const std::int64_t other = run_.source.Counts().otherValues[j];
    if (other > 0) run_.report.Warning(OtherValuesText(Name(j), other));
    std::vector<double> values = columns[j].values;
    if (values.empty()) values = census.values[j].values;
    if (census.values[j].tooMany) {
      fault = ProcedureFault(procedure_,
                             "variable " + Name(j) + " has more than " +
                                 std::to_string(VALUECOUNTS::kMostValues) + " different values",
                             "Join them to categories with RC, or choose ordinal variables.");
      return false;
    }
    if (j == 0) values_ = values;
    if (values == values_) continue;
    fault = ProcedureFault(
        procedure_,
        "the variables have different categories: " + Name(0) + " has " + ValueList(values_) +
            ", and " + Name(j) + " has " + ValueList(values),
        "Give them the same categories with RC, or define the categories in the data set.");
    return false;
  }
  return true;
}

bool COrdinalTables::Read(const VARIABLELIST& variables, FAULT& fault) {
  variables_ = variables;
  if (!FindCategories(fault)) return false;
  std::vector<CASECOLUMN> columns;
  for (const std::int32_t variable : variables_) columns.push_back({variable, values_});
  run_.source.SetColumns(std::move(columns));
  tables_.emplace(std::vector<int>(variables_.size(), static_cast<int>(values_.size())),
                  stats::EDeletion::Listwise, run_.threads);
  return run_.Pass(
      run_.source, [this](const CASEBLOCK& block) { tables_->Add(block.codes); }, fault);
}
