// The variables of a screening, their types in this run and their categories.
#pragma once

#include <vector>

#include "engine/data/Census.h"
#include "engine/run/EngineRun.h"
#include "engine/stats/Blocks.h"

struct SCREENVARIABLE {
  std::int32_t variable = 0;  // of the job's data, counted from 0
  CString name;               // as shown
  std::int32_t type = kOrdinal;
  bool definedCategories = false;
  VALUECOUNTS values;            // of an ordinal variable: those that have cases
  std::int64_t missing = 0;      // cases
  std::int64_t otherValues = 0;  // cells that are none of the defined categories; missing, too
  std::size_t column = 0;        // among the cells of a block
  int place = 0;                 // among the numeric variables, or among the ordinal ones

  bool IsOrdinal() const { return type == kOrdinal; }
  bool IsCensored() const { return type >= kCensoredAbove && type <= kCensoredBoth; }
};

// The variables in the order of the analysis. In blocks the numeric ones come first: continuous,
// then censored, then fixed; then the ordinal ones.
struct SCREENVARIABLES {
  std::vector<SCREENVARIABLE> all;
  std::vector<std::size_t> numeric;  // indexes into `all`, in the order of the columns
  std::vector<std::size_t> ordinal;
  std::size_t continuous = 0;  // how many of `numeric` are of that type
  CENSUS census;
  CASECOUNTS counts;  // of the pass that counted
  stats::EDeletion deletion = stats::EDeletion::Listwise;

  bool HasCensored() const;
  bool IsListwise() const { return deletion == stats::EDeletion::Listwise; }
  // Sum of weights of the cases that the analysis has.
  double Weight() const { return IsListwise() ? census.completeWeight : census.weight; }
};

// Finds out what is there, in one pass, and makes the source ready for the passes of the analysis.
// Warnings about types go to the report's list through `warnings`.
bool FindScreenVariables(ENGINERUN& run, SCREENVARIABLES& variables, std::vector<CString>& warnings,
                         FAULT& fault);
// The same for these variables, in this order.
bool FindListedVariables(ENGINERUN& run, const VARIABLELIST& list, SCREENVARIABLES& variables,
                         std::vector<CString>& warnings, FAULT& fault);

// Why a pass had no cases, whatever their values are: the fault of the line to blame. Without a
// cause when there were cases before missing values were looked at.
FAULT UnusableCasesFault(const JOB& job, const CASECOUNTS& counts);
// The warning of cells that are none of the categories that are defined.
CString OtherValuesText(const CString& name, std::int64_t cells);

// What outputs call a variable, counted from 0.
CString ShownName(const TORVIKSTRUCT& data, std::int32_t variable);
// The categories that are defined, ascending and each once; empty when there are none.
std::vector<double> DefinedCategories(const TORVIKSTRUCT& data, std::int32_t variable);

// "ordinal", "continuous", "censored above" ...
const char* TypeText(std::int32_t type);
// What a category of an ordinal variable is called: its value.
CString CategoryText(double value);
// The label of a defined category, empty for none.
CString CategoryLabel(const TORVIKSTRUCT& data, const SCREENVARIABLE& variable, double value);
