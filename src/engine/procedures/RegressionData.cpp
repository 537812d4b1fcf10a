#include "engine/procedures/RegressionData.h"

#include <algorithm>
#include <memory>

#include "engine/screen/CasesSections.h"
#include "host/Numbers.h"

namespace {

bool IsListwise(const ENGINERUN& run) {
  return run.job.data.deletion != kPairwise;
}

// Of how many cases one is taken to a sample; 0 for too few to need one. An odd number, so that
// the cases of a selection by even or odd numbers have their share.
std::int64_t SampleStep(std::int64_t cases) {
  constexpr std::int64_t kSampleCases = 32'768;
  constexpr std::int64_t kSmallestStep = 8;
  constexpr std::int64_t kWorthwhile = 80'000;
  return cases < kWorthwhile ? 0 : std::max(cases / kSampleCases, kSmallestStep) | 1;
}

}  // namespace

CRegressionData::CRegressionData(ENGINERUN& run, const PROCEDURE& procedure, VARIABLELIST columns)
    : run_(run),
      procedure_(procedure),
      columns_(std::move(columns)),
      survey_(static_cast<int>(columns_.size())) {}

void CRegressionData::Choose(std::int32_t y) {
  y_ = y;
  coded_ = false;
  categories_ = VALUECOUNTS();
  otherValues_ = 0;
  source_.clear();
  for (const std::int32_t column : columns_) source_.push_back({column, {}});
  source_.push_back({y, {}});
  if (IsListwise(run_)) {
    for (const std::int32_t other : std::get<REGRESSION>(procedure_.what).y) {
      if (other != y) source_.push_back({other, {}});
    }
  }
  run_.source.SetColumns(source_);
  run_.source.SetListwise(true);
}

stats::CaseBlock CRegressionData::WithY(const CASEBLOCK& block) const {
  stats::CaseBlock cells = block.cells;
  cells.variables = static_cast<int>(columns_.size()) + 1;
  return cells;
}

bool CRegressionData::SumProducts(stats::CCrossProducts& sums, FAULT& fault) {
  return run_.PassInPieces(
      run_.source,
      [&](const CASEBLOCK& block) {
        auto part = std::make_shared<stats::CCrossProducts>(sums.Variables());
        part->Add(WithY(block));
        return [&sums, part] { sums.Merge(*part); };
      },
      fault);
}

bool CRegressionData::Survey(bool categories, FAULT& fault) {
  const std::size_t at = columns_.size();
  const std::int64_t step = SampleStep(run_.file.Records());
  survey_ = stats::CRegressionSurvey(static_cast<int>(at), step);
  if (categories) {
    source_[at].values = DefinedCategories(run_.job.data, y_);
    run_.source.SetColumns(source_);
  }
  const bool done = run_.PassInPieces(
      run_.source,
      [&](const CASEBLOCK& block) {
        auto part = std::make_shared<stats::CRegressionSurvey>(survey_.WithoutCases());
        part->Add(WithY(block), block.numbers);
        auto values = std::make_shared<VALUECOUNTS>();
        for (std::int64_t k = 0; categories && k < block.cells.cases; ++k) {
          values->Add(block.cells.cells[k * block.cells.stride + static_cast<std::int64_t>(at)],
                      block.cells.weights != nullptr ? block.cells.weights[k] : 1);
        }
        return [this, part, values] {
          survey_.Merge(*part);
          categories_.Merge(*values);
        };
      },
      fault);
  if (!done || !categories) return done;
  otherValues_ = run_.source.Counts().otherValues[at];
  if (!CheckCategories(fault)) return false;
  coded_ = true;
  survey_.Sample().Code(categories_.values);
  source_[at].values = categories_.values;
  run_.source.SetColumns(source_);
  return true;
}

bool CRegressionData::GiveCategories(const std::vector<double>& values, FAULT& fault) {
  for (const double value : categories_.values) {
    if (std::binary_search(values.begin(), values.end(), value)) continue;
    fault = ProcedureFault(procedure_,
                           "the thresholds of " + YName() + " are fixed for other categories: " +
                               FormatShortest(value) + " is none of them",
                           "Put this line above the one that gives the variable new values, or "
                           "leave out the FT or MT line.");
    return false;
  }
  for (const double value : values) categories_.Add(value, 0);
  survey_.Sample().Code(values);
  source_[columns_.size()].values = values;
  run_.source.SetColumns(source_);
  return true;
}

bool CRegressionData::CheckCategories(FAULT& fault) {
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

bool CRegressionData::Pass(const stats::RegressionWork& work, FAULT& fault) {
  const auto count = static_cast<int>(columns_.size());
  return run_.PassInPieces(
      run_.source,
      [&, count](const CASEBLOCK& block) {
        stats::RegressionBlock cases{block.cells, block.cells.cells + count, block.cells.stride,
                                     coded_ ? block.codes.codes : nullptr};
        cases.x.variables = count;
        return work(cases);
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
  // The only x is the one that it is about.
  if (status == stats::EStatus::Boundary && columns_.size() == 1) variable = 0;
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
          CString(isX ? "Leave the variable out, or join categories of it"
                      : "Leave out the x variable that does, or join categories of it") +
              " or of " + YName() + " with RC.");
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
