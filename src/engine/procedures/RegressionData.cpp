#include "engine/procedures/RegressionData.h"

#include <algorithm>

#include "engine/screen/CasesSections.h"
#include "host/Numbers.h"

namespace {

bool IsListwise(const ENGINERUN& run) {
  return run.job.data.deletion != kPairwise;
}

}  // namespace

CRegressionData::CRegressionData(ENGINERUN& run, const PROCEDURE& procedure, VARIABLELIST columns)
    : run_(run), procedure_(procedure), columns_(std::move(columns)) {}

bool CRegressionData::Prepare(std::int32_t y, bool categories, FAULT& fault) {
  y_ = y;
  coded_ = categories;
  categories_ = VALUECOUNTS();
  otherValues_ = 0;
  std::vector<CASECOLUMN> columns;
  for (const std::int32_t column : columns_) columns.push_back({column, {}});
  columns.push_back({y, {}});
  if (IsListwise(run_)) {
    for (const std::int32_t other : std::get<REGRESSION>(procedure_.what).y) {
      if (other != y) columns.push_back({other, {}});
    }
  }
  if (categories) columns[columns_.size()].values = DefinedCategories(run_.job.data, y);
  run_.source.SetColumns(columns);
  run_.source.SetListwise(true);
  if (!categories) return true;
  if (!FindCategories(fault)) return false;
  columns[columns_.size()].values = categories_.values;
  run_.source.SetColumns(std::move(columns));
  return true;
}

bool CRegressionData::FindCategories(FAULT& fault) {
  const std::size_t at = columns_.size();
  const bool done = run_.Pass(
      run_.source,
      [&](const CASEBLOCK& block) {
        const stats::CaseBlock& cells = block.cells;
        for (std::int64_t k = 0; k < cells.cases; ++k) {
          categories_.Add(cells.cells[k * cells.stride + static_cast<std::int64_t>(at)],
                          cells.weights != nullptr ? cells.weights[k] : 1);
        }
      },
      fault);
  if (!done) return false;
  otherValues_ = run_.source.Counts().otherValues[at];
  if (categories_.tooMany) {
    fault = ProcedureFault(procedure_,
                           "variable " + YName() + " has more than " +
                               std::to_string(VALUECOUNTS::kMostValues) + " different values",
                           "Join them to categories with RC, or use RG for a continuous variable.");
  } else if (categories_.values.size() == 1) {
    fault = ProcedureFault(procedure_,
                           "variable " + YName() + " has one category only, " +
                               FormatShortest(categories_.values.front()) +
                               ", among the cases that are used",
                           "Choose another y variable, or change the selection of cases.");
  } else if (categories_.values.empty()) {
    fault = FaultOf(stats::EStatus::NoCases, -1);
  }
  return !fault;
}

bool CRegressionData::Pass(const std::function<void(const stats::RegressionBlock&)>& work,
                           FAULT& fault) {
  const auto count = static_cast<int>(columns_.size());
  return run_.Pass(
      run_.source,
      [&](const CASEBLOCK& block) {
        stats::RegressionBlock cases{block.cells, block.cells.cells + count, block.cells.stride,
                                     coded_ ? block.codes.codes : nullptr};
        cases.x.variables = count;
        work(cases);
      },
      fault);
}

void CRegressionData::WriteHeading(const CString& title) const {
  WriteDataHeading(run_, columns_.size() + 1, DeletionText(IsListwise(run_)));
  WriteListwiseCases(run_, run_.source.Counts());
  if (otherValues_ > 0) run_.report.Warning(OtherValuesText(YName(), otherValues_));
  run_.report.Section(title);
}

FAULT CRegressionData::FaultOf(stats::EStatus status, int variable) const {
  const bool isX = variable >= 0 && static_cast<std::size_t>(variable) < columns_.size();
  const CString x = isX ? Name(static_cast<std::size_t>(variable)) : CString();
  const auto fault = [this](CString cause, CString remedy) {
    return ProcedureFault(procedure_, std::move(cause), std::move(remedy));
  };
  switch (status) {
    case stats::EStatus::NoCases:
    case stats::EStatus::ZeroWeights:
      if (FAULT unusable = UnusableCasesFault(run_.job, run_.source.Counts())) return unusable;
      return fault("no case has values of all variables of the equation of " + YName(),
                   "Leave out variables with many missing values, or change the selection.");
    case stats::EStatus::TooFewCases:
      return fault("there are no more cases than coefficients in the equation of " + YName(),
                   "Leave out x variables, or use more cases.");
    case stats::EStatus::Constant:
      return isX ? fault("the x variable " + x + " has one value only, as the intercept has",
                         "Leave it out of the list behind ON.")
                 : fault("the y variable " + YName() + " has one value only",
                         "Choose another y variable, or change the selection of cases.");
    case stats::EStatus::NotFinite:
      return fault("the values of " + (isX ? "the x variable " + x : "the y variable " + YName()) +
                       " are too large or too small: their squares cannot be computed",
                   "Bring the variable to another unit with a line NE before this one.");
    case stats::EStatus::NotPositiveDefinite:
      return fault("the x variable " + x + " is collinear: it is a sum of x variables before it",
                   "Leave it, or one of the others, out of the list behind ON.");
    case stats::EStatus::Boundary:
      return fault(
          (isX ? "the x variable " + x + " separates" : CString("the x variables separate")) +
              " the categories of " + YName() +
              " perfectly (or nearly so), so that the likelihood has no maximum",
          "Leave the variable out, or join categories of it or of " + YName() + " with RC.");
    default:
      return fault(
          "the equation of " + YName() + " cannot be estimated: " + stats::StatusText(status),
          "Look at the variables by screening them first, without this line.");
  }
}

void CRegressionData::WarnOfCollinearity(double smallestPivot) const {
  constexpr double kNearly = 1e-6;
  if (smallestPivot >= kNearly) return;
  run_.report.Warning("The x variables of the equation of " + YName() +
                      " are nearly collinear: only a share of " + CReport::Digits(smallestPivot) +
                      " of the variance of one of them is not explained by others.");
}
