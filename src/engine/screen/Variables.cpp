#include "engine/screen/Variables.h"

#include <algorithm>
#include <memory>

#include "host/Numbers.h"
#include "host/Text.h"

namespace {

FAULT LineFault(const SyntaxLine& line, CString cause, CString remedy) {
  return {line.number, CString(Trimmed(line.text)), std::move(cause), std::move(remedy)};
}

// Those of the SE lines; without any all that are neither dropped nor the weight.
bool ChooseVariables(const ENGINERUN& run, std::vector<std::int32_t>& chosen, FAULT& fault) {
  const JOB& job = run.job;
  for (const std::int32_t variable : job.selected) {
    if (!job.selection.Drops(variable)) continue;
    fault = LineFault(job.selectedLine,
                      "variable " + ShownName(job.data, variable) +
                          " is selected by SE, and dropped by an SD line",
                      "Take it out of one of the two lines.");
    return false;
  }
  chosen = job.selected;
  if (!chosen.empty()) return true;
  for (std::int32_t i = 0; i < job.data.variables; ++i) {
    if (!job.selection.Drops(i) && i != run.source.WeightVariable()) chosen.push_back(i);
  }
  if (!chosen.empty()) return true;
  fault = job.selection.DropsAllVariables()
              ? LineFault(job.selectionLines.back(), "the SD lines drop every variable",
                          "Leave at least one variable.")
              : LineFault(job.header.line, "the data file has no variables to analyse",
                          "Name a data file with variables.");
  return false;
}

}  // namespace

bool SCREENVARIABLES::HasCensored() const {
  return std::any_of(all.begin(), all.end(),
                     [](const SCREENVARIABLE& variable) { return variable.IsCensored(); });
}

std::vector<double> DefinedCategories(const TORVIKSTRUCT& data, std::int32_t variable) {
  const auto index = static_cast<std::size_t>(variable);
  std::vector<double> values;
  values.reserve(kCategorySlots);
  for (std::int32_t k = 0; k < data.variable[index].categories; ++k) {
    values.push_back(data.categoryValues[index * kCategorySlots + static_cast<std::size_t>(k)]);
  }
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return values;
}

FAULT UnusableCasesFault(const JOB& job, const CASECOUNTS& counts) {
  if (counts.read == 0) {
    return LineFault(job.header.line, "the data file has no cases", "Name a data file with cases.");
  }
  if (counts.notSelected == counts.read) {
    return LineFault(job.selectionLines.front(), "no case is selected",
                     "Change the conditions of the SC and SD lines.");
  }
  if (counts.notSelected + counts.withoutWeight == counts.read) {
    return LineFault(job.header.line,
                     "no case has a weight above zero in the weight variable of the data file",
                     "Choose another weight variable, or none.");
  }
  return {};
}

CString OtherValuesText(const CString& name, std::int64_t cells) {
  return "Variable " + name + " has " + std::to_string(cells) +
         (cells == 1
              ? " cell with a value that is none of its categories. It counts as missing."
              : " cells with values that are none of its categories. They count as missing.");
}

CString ShownName(const TORVIKSTRUCT& data, std::int32_t variable) {
  const CString name(
      Trimmed(TextForDisplay(data.variable[static_cast<std::size_t>(variable)].name)));
  return name.empty() ? "VAR" + std::to_string(variable + 1) : name;
}

namespace {

// What listwise deletion has to leave out, where that is plain to see.
CString VariablesWithoutValues(const SCREENVARIABLES& variables) {
  CString names;
  for (const SCREENVARIABLE& variable : variables.all) {
    if (variable.missing == variables.counts.used)
      names += (names.empty() ? "" : ", ") + variable.name;
  }
  return names.empty() ? CString() : " (without any value: " + names + ")";
}

bool NoCases(const ENGINERUN& run, const SCREENVARIABLES& variables, FAULT& fault) {
  const JOB& job = run.job;
  fault = UnusableCasesFault(job, variables.counts);
  if (!fault && variables.IsListwise() && variables.census.complete == 0) {
    const bool selected = job.selectedLine.number != 0;
    fault = LineFault(selected ? job.selectedLine : job.output.line,
                      "all cases have missing values, so that listwise deletion leaves none" +
                          VariablesWithoutValues(variables),
                      "Select other variables with SE, or define pairwise deletion for the data.");
  }
  return static_cast<bool>(fault);
}

void Classify(SCREENVARIABLE& variable, std::vector<CString>& warnings) {
  if (!variable.IsOrdinal()) return;
  if (variable.values.tooMany) {
    variable.type = kContinuous;
    warnings.push_back("Variable " + variable.name +
                       " is ordinal and has no defined categories, and more than " +
                       std::to_string(VALUECOUNTS::kMostValues) +
                       " different values: it is treated as continuous in this run.");
    return;
  }
  if (variable.otherValues > 0) {
    warnings.push_back(OtherValuesText(variable.name, variable.otherValues));
  }
}

// Columns for the passes of the analysis.
void ArrangeColumns(ENGINERUN& run, SCREENVARIABLES& variables) {
  const auto take = [&variables](auto fits, std::vector<std::size_t>& list) {
    for (std::size_t i = 0; i < variables.all.size(); ++i) {
      if (fits(variables.all[i].type)) list.push_back(i);
    }
  };
  take([](std::int32_t type) { return type == kContinuous; }, variables.numeric);
  variables.continuous = variables.numeric.size();
  take([](std::int32_t type) { return type >= kCensoredAbove && type <= kCensoredBoth; },
       variables.numeric);
  take([](std::int32_t type) { return type == kFixed; }, variables.numeric);
  take([](std::int32_t type) { return type == kOrdinal; }, variables.ordinal);
  std::vector<CASECOLUMN> columns;
  for (const auto* list : {&variables.numeric, &variables.ordinal}) {
    int place = 0;
    for (const std::size_t i : *list) {
      SCREENVARIABLE& variable = variables.all[i];
      variable.column = columns.size();
      variable.place = place++;
      columns.push_back({variable.variable, variable.values.values});
    }
  }
  run.source.SetColumns(std::move(columns));
  run.source.SetListwise(variables.IsListwise());
}

}  // namespace

bool FindScreenVariables(ENGINERUN& run, SCREENVARIABLES& variables, std::vector<CString>& warnings,
                         FAULT& fault) {
  VARIABLELIST chosen;
  return ChooseVariables(run, chosen, fault) &&
         FindListedVariables(run, chosen, variables, warnings, fault);
}

bool FindListedVariables(ENGINERUN& run, const VARIABLELIST& list, SCREENVARIABLES& variables,
                         std::vector<CString>& warnings, FAULT& fault) {
  const TORVIKSTRUCT& data = run.job.data;
  variables = SCREENVARIABLES();
  variables.deletion =
      data.deletion == kPairwise ? stats::EDeletion::Pairwise : stats::EDeletion::Listwise;
  std::vector<CASECOLUMN> columns;
  std::vector<bool> wanted;
  for (const std::int32_t i : list) {
    SCREENVARIABLE variable;
    variable.variable = i;
    const VARSTRUCT& record = data.variable[static_cast<std::size_t>(i)];
    variable.name = ShownName(data, i);
    variable.type = record.type;
    if (variable.type < kOrdinal || variable.type > kFixed) {
      warnings.push_back("Variable " + variable.name + " has the unknown type " +
                         std::to_string(record.type) + ": it is treated as continuous.");
      variable.type = kContinuous;
    }
    CASECOLUMN column{i, {}};
    if (variable.IsOrdinal()) column.values = DefinedCategories(data, i);
    variable.definedCategories = !column.values.empty();
    wanted.push_back(variable.IsOrdinal());
    columns.push_back(std::move(column));
    variables.all.push_back(std::move(variable));
  }
  run.source.SetColumns(std::move(columns));
  run.source.SetListwise(false);
  CCensusTaker taker(wanted, variables.IsListwise(), run.threads);
  const bool done = run.PassInPieces(
      run.source,
      [&taker](const CASEBLOCK& block) {
        auto counted = std::make_shared<CENSUS>(taker.Count(block));
        return [&taker, counted] { taker.Add(*counted); };
      },
      fault);
  if (!done) return false;
  variables.census = taker.Result();
  variables.counts = run.source.Counts();
  for (std::size_t j = 0; j < variables.all.size(); ++j) {
    SCREENVARIABLE& variable = variables.all[j];
    variable.values = variables.census.values[j];
    variable.missing = variables.census.missing[j];
    variable.otherValues = variables.counts.otherValues[j];
    Classify(variable, warnings);
  }
  if (NoCases(run, variables, fault)) return false;
  ArrangeColumns(run, variables);
  return true;
}

const char* TypeText(std::int32_t type) {
  switch (type) {
    case kOrdinal:
      return "ordinal";
    case kContinuous:
      return "continuous";
    case kCensoredAbove:
      return "censored above";
    case kCensoredBelow:
      return "censored below";
    case kCensoredBoth:
      return "censored above and below";
    default:
      return "fixed";
  }
}

CString CategoryText(double value) {
  return FormatShortest(value);
}

CString CategoryLabel(const TORVIKSTRUCT& data, const SCREENVARIABLE& variable, double value) {
  const auto index = static_cast<std::size_t>(variable.variable);
  for (std::int32_t k = 0; k < data.variable[index].categories; ++k) {
    const std::size_t slot = index * kCategorySlots + static_cast<std::size_t>(k);
    if (data.categoryValues[slot] == value) {
      return CString(Trimmed(TextForDisplay(data.categoryLabels[slot])));
    }
  }
  return {};
}
