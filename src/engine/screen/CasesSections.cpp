#include "engine/screen/CasesSections.h"

#include <algorithm>

#include "host/Text.h"

namespace {

constexpr std::size_t kShownPatterns = 20;

TABLE FactTable() {
  TABLE table;
  table.columns = {{"", true}, {"", false}};
  return table;
}

void AddFact(TABLE& table, const CString& what, std::int64_t count) {
  table.rows.push_back({what, std::to_string(count)});
}

void WriteCaseCounts(const ENGINERUN& run, const SCREENVARIABLES& variables) {
  TABLE table = LeftOutTable(run, variables.counts);
  AddFact(table, "Complete cases", variables.census.complete);
  if (variables.IsListwise()) {
    AddFact(table, "Left out by listwise deletion",
            variables.census.cases - variables.census.complete);
  }
  AddFact(table, "Cases used",
          variables.IsListwise() ? variables.census.complete : variables.census.cases);
  if (run.source.HasWeights()) {
    table.rows.push_back({"Sum of their weights", CReport::Count(variables.Weight())});
  }
  run.report.Table(table);
}

CString PatternNames(const SCREENVARIABLES& variables, const std::string& pattern) {
  CString names;
  for (std::size_t j = 0; j < pattern.size(); ++j) {
    if (pattern[j] == '1') names += (names.empty() ? "" : " ") + variables.all[j].name;
  }
  return names;
}

// Rows of a table for a list of names that may be too long for one.
void AddPattern(TABLE& table, std::int64_t cases, CString names, std::size_t width) {
  CString count = std::to_string(cases);
  while (TextColumns(names) > width) {
    std::size_t cut = names.rfind(' ', width);
    if (cut == CString::npos || cut == 0) cut = names.find(' ');
    if (cut == CString::npos) break;
    table.rows.push_back({count, names.substr(0, cut)});
    names.erase(0, cut + 1);
    count.clear();
  }
  table.rows.push_back({count, names});
}

void WritePatterns(const ENGINERUN& run, const SCREENVARIABLES& variables) {
  const CENSUS& census = variables.census;
  std::vector<std::pair<std::int64_t, std::string>> patterns;
  for (const auto& [pattern, cases] : census.patterns) patterns.emplace_back(cases, pattern);
  std::stable_sort(patterns.begin(), patterns.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  run.report.Subsection("Patterns of missing values");
  TABLE table;
  table.columns = {{"Cases", false}, {"Missing variables", true}};
  constexpr std::size_t kBesideNames = 14;
  const auto width = static_cast<std::size_t>(run.job.output.Columns()) - kBesideNames;
  if (census.complete > 0) table.rows.push_back({std::to_string(census.complete), "(none)"});
  for (std::size_t i = 0; i < std::min(patterns.size(), kShownPatterns); ++i) {
    AddPattern(table, patterns[i].first, PatternNames(variables, patterns[i].second), width);
  }
  run.report.Table(table);
  if (patterns.size() > kShownPatterns || census.otherPatterns > 0) {
    std::int64_t others = census.otherPatterns;
    for (std::size_t i = kShownPatterns; i < patterns.size(); ++i) others += patterns[i].first;
    run.report.Gap();
    run.report.Paragraph(
        std::to_string(others) + (others == 1 ? " further case has " : " further cases have ") +
        (census.otherPatterns > 0 ? "many" : std::to_string(patterns.size() - kShownPatterns)) +
        " other patterns.");
  }
}

}  // namespace

const char* DeletionText(bool listwise) {
  return listwise ? "listwise deletion" : "pairwise deletion";
}

TABLE LeftOutTable(const ENGINERUN& run, const CASECOUNTS& counts) {
  TABLE table = FactTable();
  AddFact(table, "Cases in the data file", run.file.Records());
  if (!run.job.selection.IsEmpty()) AddFact(table, "Left out by the selection", counts.notSelected);
  if (run.source.HasWeights()) {
    AddFact(table, "Left out for want of a weight above zero", counts.withoutWeight);
  }
  return table;
}

void WriteDataHeading(const ENGINERUN& run, std::size_t variables, const char* deletion) {
  const JOB& job = run.job;
  run.report.Section("Data");
  run.report.Line("  Data file:         " + TextForDisplay(run.file.Name()));
  run.report.Line("  Variables:         " + std::to_string(variables) + " of " +
                  std::to_string(job.data.variables));
  if (run.source.HasWeights()) {
    const auto weight = static_cast<std::size_t>(run.source.WeightVariable());
    run.report.Line("  Weight variable:   " + TextForDisplay(job.data.variable[weight].name));
  }
  run.report.Line(CString("  Missing values:    ") + deletion);
  for (const SyntaxLine& line : job.selectionLines) {
    run.report.Line("  Selection:         " + TextForDisplay(Trimmed(line.text)));
  }
  bool random = false;
  for (const TRANSFORMATION& transformation : job.transformations) {
    if (std::holds_alternative<CASEFUNCTION>(transformation)) continue;
    const auto* const compute = std::get_if<COMPUTE>(&transformation);
    const SyntaxLine& line =
        compute != nullptr ? compute->line : std::get<RECODE>(transformation).line;
    random = random || (compute != nullptr && compute->expression.IsRandom());
    run.report.Line("  Transformation:    " + TextForDisplay(Trimmed(line.text)));
  }
  if (random) run.report.Line("  Random numbers:    seed " + std::to_string(run.seed));
  run.report.Gap();
}

void WriteDataWarnings(const ENGINERUN& run, const CASECOUNTS& counts) {
  const JOB& job = run.job;
  if (run.file.Contents().damaged) {
    run.report.Warning("The data file is damaged: it promises " +
                       std::to_string(run.file.Contents().statedRecords) +
                       " cases, and not everything is there. What is there was used.");
  }
  if (counts.infinite > 0) {
    run.report.Warning(counts.infinite == 1 ? CString("1 cell is infinite. It counts as missing.")
                                            : std::to_string(counts.infinite) +
                                                  " cells are infinite. They count as missing.");
  }
  for (std::size_t t = 0; t < counts.undefined.size(); ++t) {
    const std::int64_t count = counts.undefined[t];
    if (count == 0) continue;
    const SyntaxLine& line = std::get<COMPUTE>(job.transformations[t]).line;
    run.report.Warning("Line " + std::to_string(line.number) + " (" +
                       TextForDisplay(Trimmed(line.text)) + ") has no finite result for " +
                       std::to_string(count) + " cases. They get a missing value.");
  }
}

void WriteListwiseCases(const ENGINERUN& run, const CASECOUNTS& counts) {
  TABLE table = LeftOutTable(run, counts);
  AddFact(table, "Left out for missing values", counts.incomplete);
  AddFact(table, "Cases used", counts.used);
  run.report.Table(table);
  WriteDataWarnings(run, counts);
}

void WriteOwnCasesSection(const ENGINERUN& run, std::size_t variables, const CASECOUNTS& counts) {
  WriteDataHeading(run, variables, "each variable has its own cases");
  run.report.Table(LeftOutTable(run, counts));
  WriteDataWarnings(run, counts);
}

void WriteDataSection(const ENGINERUN& run, const SCREENVARIABLES& variables) {
  WriteDataHeading(run, variables.all.size(), DeletionText(variables.IsListwise()));
  WriteCaseCounts(run, variables);
  WriteDataWarnings(run, variables.counts);
}

void WriteMissingSection(const ENGINERUN& run, const SCREENVARIABLES& variables) {
  run.report.Section("Variables and missing values");
  TABLE table;
  table.columns = {{"Variable", true},
                   {"Type", true},
                   {"Present", false},
                   {"Missing", false},
                   {"Percent missing", false}};
  const std::int64_t cases = variables.census.cases;
  for (const SCREENVARIABLE& variable : variables.all) {
    constexpr double kPercent = 100;
    table.rows.push_back(
        {variable.name, TypeText(variable.type), std::to_string(cases - variable.missing),
         std::to_string(variable.missing),
         CReport::Number(
             kPercent * static_cast<double>(variable.missing) / static_cast<double>(cases), 2)});
  }
  run.report.Table(table);
  if (variables.census.complete < cases) WritePatterns(run, variables);
}
