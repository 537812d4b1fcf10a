// The cases of a regression line: which variables, which cases, and what is said about both.
#pragma once

#include "engine/procedures/ProcedureReport.h"
#include "engine/stats/RegressionSurvey.h"

// One equation: y on the columns in front of it. Listwise deletion takes the cases that are
// complete in all variables of the line, pairwise deletion those complete in the equation's.
class CRegressionData {
 public:
  // `columns`: x, and the instruments that are none of them.
  CRegressionData(ENGINERUN& run, const PROCEDURE& procedure, VARIABLELIST columns);

  // Makes the source ready for this y.
  void Choose(std::int32_t y);

  // Sums the products of the columns, and of y behind them. False with the reason in `fault`.
  bool SumProducts(stats::CCrossProducts& sums, FAULT& fault);

  // The first pass for estimators that make several. With `categories` the values of y that have
  // cases are found too, and its cases are coded from then on. False with the reason in `fault`.
  bool Survey(bool categories, FAULT& fault);
  const stats::CRegressionSurvey& Survey() const { return survey_; }
  // Behind it: y has these categories, some of them without cases perhaps. False with the reason in
  // `fault` when it has other values.
  bool GiveCategories(const std::vector<double>& values, FAULT& fault);

  // One pass over the equation's cases: the columns as x, y beside. False with the reason in
  // `fault`.
  bool Pass(const stats::RegressionWork& work, FAULT& fault);

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
  stats::CaseBlock WithY(const CASEBLOCK& block) const;
  bool CheckCategories(FAULT& fault);

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  VARIABLELIST columns_;
  std::int32_t y_ = 0;
  std::vector<CASECOLUMN> source_;  // what is asked of the source: the columns, y, others
  bool coded_ = false;
  stats::CRegressionSurvey survey_;
  VALUECOUNTS categories_;
  std::int64_t otherValues_ = 0;  // cells of y that are none of its defined categories
};
