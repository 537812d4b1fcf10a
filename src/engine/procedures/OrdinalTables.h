// Two-way tables of ordinal variables that have the same categories.
#pragma once

#include <optional>

#include "engine/procedures/ProcedureReport.h"
#include "engine/stats/PairTables.h"

class COrdinalTables {
 public:
  COrdinalTables(ENGINERUN& run, const PROCEDURE& procedure) : run_(run), procedure_(procedure) {}

  // Reads the cases that are complete in all of the variables, whatever their type in this run is.
  // Their categories, defined or found, have to be the same. False with the reason in `fault`.
  bool Read(const VARIABLELIST& variables, FAULT& fault);

  CString Name(std::size_t place) const { return ShownName(run_.job.data, variables_[place]); }
  const std::vector<double>& Values() const { return values_; }  // of the categories, ascending
  const stats::CPairTables& Tables() const { return *tables_; }

 private:
  bool FindCategories(FAULT& fault);

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  VARIABLELIST variables_;
  std::vector<double> values_;
  std::optional<stats::CPairTables> tables_;
};
