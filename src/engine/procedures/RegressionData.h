// The cases of a regression line: which variables, which cases, and what is said about both.
#pragma once

#include "engine/procedures/ProcedureReport.h"
#include "engine/stats/RegressionCases.h"

// One equation: y on the columns in front of it. Listwise deletion takes the cases that are
// complete in all variables of the line, pairwise deletion those complete in the equation's.
class CRegressionData {
 public:
  // `columns`: x, and the instruments that are none of them.
  CRegressionData(ENGINERUN& run, const PROCEDURE& procedure, VARIABLELIST columns);

  // Makes the source ready for this y. With `categories` the values of y are found and its cases
  // are coded; the values are then those that have cases. False with the reason in `fault`.
  bool Prepare(std::int32_t y, bool categories, FAULT& fault);

  // One pass over the equation's cases: the columns as x, y beside. False with the reason in
  // `fault`.
  bool Pass(const std::function<void(const stats::RegressionBlock&)>& work, FAULT& fault);

  std::int32_t Y() const { return y_; }
  CString YName() const { return ShownName(run_.job.data, y_); }
  CString Name(std::size_t column) const { return ShownName(run_.job.data, columns_[column]); }
  std::size_t Columns() const { return columns_.size(); }
  const VALUECOUNTS& Categories() const { return categories_; }

  // "Regression of y on ..." with the cases; after a pass.
  void WriteHeading(const CString& title) const;
  // The fault of an estimator's status; `variable` is a column, -1 for none. `separation` words a
  // boundary.
  FAULT FaultOf(stats::EStatus status, int variable) const;
  // A warning when this share of an x's variance is all that the others leave.
  void WarnOfCollinearity(double smallestPivot) const;

 private:
  bool FindCategories(FAULT& fault);

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  VARIABLELIST columns_;
  std::int32_t y_ = 0;
  bool coded_ = false;
  VALUECOUNTS categories_;
  std::int64_t otherValues_ = 0;  // cells of y that are none of its defined categories
};
