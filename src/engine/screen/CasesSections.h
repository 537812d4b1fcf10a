// The sections about the data as a whole: where they come from, which cases are used, what is
// missing.
#pragma once

#include "engine/screen/Variables.h"

// The section's first lines, and its warnings about cells of the last pass; between them stands
// what became of the cases.
void WriteDataHeading(const ENGINERUN& run, std::size_t variables, const char* deletion);
// Rows "what   count" of the cases that no procedure has, the data file's cases first.
TABLE LeftOutTable(const ENGINERUN& run, const CASECOUNTS& counts);
// "listwise deletion", "pairwise deletion"
const char* DeletionText(bool listwise);
void WriteDataWarnings(const ENGINERUN& run, const CASECOUNTS& counts);
// What became of the cases in a pass that left out the incomplete ones, and its warnings.
void WriteListwiseCases(const ENGINERUN& run, const CASECOUNTS& counts);
// The section for variables that each have their own cases: without those left out for missing
// values.
void WriteOwnCasesSection(const ENGINERUN& run, std::size_t variables, const CASECOUNTS& counts);
void WriteDataSection(const ENGINERUN& run, const SCREENVARIABLES& variables);
void WriteMissingSection(const ENGINERUN& run, const SCREENVARIABLES& variables);
