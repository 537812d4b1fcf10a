#include "engine/procedures/IncompleteSample.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "engine/screen/CasesSections.h"
#include "engine/stats/Thresholds.h"
#include "engine/stats/Univariate.h"
#include "host/Numbers.h"

namespace {

using Eigen::Index;
using stats::EStatus;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// So many of a positive number are enough to judge it by.
double ThreeDigits(double x) {
  const double power = std::pow(10, 2 - std::floor(std::log10(x)));
  return std::round(x * power) / power;
}

}  // namespace

int INCOMPLETEVARIABLE::CategoryOf(double value) const {
  const auto at = std::lower_bound(categories.begin(), categories.end(), value);
  return at != categories.end() && *at == value ? static_cast<int>(at - categories.begin()) : -1;
}

CIncompleteSample::CIncompleteSample(ENGINERUN& run, const PROCEDURE& procedure)
    : run_(run),
      procedure_(procedure),
      report_(run.report),
      line_(std::get<MULTIPLEIMPUTATION>(procedure.what)) {
  for (const std::int32_t variable : line_.variables) {
    INCOMPLETEVARIABLE& one = variables_.emplace_back();
    one.variable = variable;
    one.name = ShownName(run.job.data, variable);
  }
}

bool CIncompleteSample::HasOrdinal() const {
  return std::any_of(variables_.begin(), variables_.end(),
                     [](const INCOMPLETEVARIABLE& one) { return one.IsOrdinal(); });
}

FAULT CIncompleteSample::FaultOf(const INCOMPLETEVARIABLE& variable, const CString& what) const {
  return ProcedureFault(procedure_, "variable " + variable.name + ": " + what,
                        "Leave the variable out of the list.");
}

void CIncompleteSample::SetColumns() {
  std::vector<CASECOLUMN> columns;
  for (const INCOMPLETEVARIABLE& one : variables_)
    columns.push_back({one.variable, one.categories});
  run_.source.SetColumns(std::move(columns));
  run_.source.SetListwise(false);
}

bool CIncompleteSample::Read(bool categories, FAULT& fault) {
  if (categories && !FindCategories(fault)) return false;
  SetColumns();
  if (!FindScales(fault)) return false;
  Eigen::VectorXd center(static_cast<Index>(variables_.size())), scale(center.size());
  for (Index j = 0; j < center.size(); ++j) {
    center(j) = variables_[static_cast<std::size_t>(j)].center;
    scale(j) = variables_[static_cast<std::size_t>(j)].scale;
  }
  patterns_ = std::make_unique<stats::CMissingPatterns>(std::move(center), std::move(scale));
  std::vector<double> scores;
  return Pass(
      [&](const stats::CaseBlock& block, const std::int64_t*) {
        if (!HasOrdinal()) return patterns_->Add(block);
        const std::size_t p = variables_.size();
        scores.assign(block.cells, block.cells + static_cast<std::size_t>(block.cases) * p);
        for (std::size_t j = 0; j < p; ++j) {
          if (!variables_[j].IsOrdinal()) continue;
          for (std::size_t at = j; at < scores.size(); at += p) {
            if (!std::isnan(scores[at]))
              scores[at] = variables_[j].scores[static_cast<std::size_t>(scores[at])];
          }
        }
        stats::CaseBlock scored = block;
        scored.cells = scores.data();
        patterns_->Add(scored);
      },
      fault);
}

bool CIncompleteSample::FindCategories(FAULT& fault) {
  SCREENVARIABLES found;
  // Every value counts for its variable, whatever the data say about incomplete cases.
  const std::int32_t deletion = std::exchange(run_.job.data.deletion, kPairwise);
  const bool done = FindListedVariables(run_, line_.variables, found, warnings_, fault);
  run_.job.data.deletion = deletion;
  if (!done) return false;
  for (std::size_t j = 0; j < variables_.size(); ++j) {
    const SCREENVARIABLE& from = found.all[j];
    INCOMPLETEVARIABLE& one = variables_[j];
    if (!from.IsOrdinal()) continue;
    one.categories = from.values.values;
    const auto thresholds = stats::EstimateThresholds(from.values.counts);
    if (one.categories.empty() || thresholds.status != EStatus::Ok) {
      fault = one.categories.empty() ? FaultOf(one, "all values are missing")
                                     : FaultOf(one, stats::StatusText(thresholds.status));
      return false;
    }
    one.thresholds = thresholds.threshold;
    one.scores = stats::ComputeNormalScores(one.categories, from.values.counts).score;
  }
  return true;
}

bool CIncompleteSample::CheckNumberOfCases(FAULT& fault) const {
  const std::int64_t cases = run_.source.Counts().used;
  if (cases > static_cast<std::int64_t>(variables_.size())) return true;
  fault = ProcedureFault(procedure_,
                         "there are no more cases than variables: " + std::to_string(cases) +
                             (cases == 1 ? " case for " : " cases for ") +
                             std::to_string(variables_.size()) + " variables",
                         "Name fewer variables, or use more cases.");
  return false;
}

bool CIncompleteSample::FindScales(FAULT& fault) {
  const auto p = static_cast<int>(variables_.size());
  stats::CUnivariate univariate(p, stats::EDeletion::Pairwise, run_.threads);
  if (!run_.Pass(
          run_.source, [&](const CASEBLOCK& block) { univariate.Add(block.cells); }, fault)) {
    return false;
  }
  if (!CheckNumberOfCases(fault)) return false;
  for (int j = 0; j < p; ++j) {
    INCOMPLETEVARIABLE& one = variables_[static_cast<std::size_t>(j)];
    const stats::UnivariateResult result = univariate.Result(j);
    one.missing = run_.source.Counts().used - result.cases;
    if (result.status != EStatus::Ok || !(result.sd > 0)) {
      fault =
          result.status == EStatus::NoCases
              ? ProcedureFault(procedure_, "all values of variable " + one.name + " are missing",
                               "Leave the variable out of the list.")
              : FaultOf(one, stats::StatusText(result.status == EStatus::Ok ? EStatus::Constant
                                                                            : result.status));
      return false;
    }
    if (one.IsOrdinal()) continue;
    one.center = result.mean;
    one.scale = result.sd;
  }
  return true;
}

bool CIncompleteSample::Pass(
    const std::function<void(const stats::CaseBlock&, const std::int64_t*)>& work, FAULT& fault) {
  std::vector<double> cells;
  return run_.Pass(
      run_.source,
      [&](const CASEBLOCK& block) {
        if (!HasOrdinal()) return work(block.cells, block.numbers);
        const std::size_t p = variables_.size();
        cells.assign(block.cells.cells,
                     block.cells.cells + static_cast<std::size_t>(block.cells.cases) * p);
        for (std::size_t j = 0; j < p; ++j) {
          const INCOMPLETEVARIABLE& one = variables_[j];
          for (std::size_t at = j; one.IsOrdinal() && at < cells.size(); at += p) {
            const int category = one.CategoryOf(cells[at]);
            cells[at] = category < 0 ? kNone : category;
          }
        }
        stats::CaseBlock categories = block.cells;
        categories.cells = cells.data();
        work(categories, block.numbers);
      },
      fault);
}

bool CIncompleteSample::Estimate(FAULT& fault) {
  result_ = stats::EstimateIncompleteNormal(*patterns_, static_cast<int>(line_.iterations),
                                            line_.convergence, run_.threads);
  if (result_.status == EStatus::Ok) return true;
  if (result_.status != EStatus::NotConverged) {
    fault = FaultOfEstimation();
    return false;
  }
  report_.Warning("EM has not converged in " + CountText(result_.iterations, "iteration") +
                  ": the last one changed a mean or covariance by " +
                  FormatShortest(ThreeDigits(result_.change)) +
                  " standard deviations. The last values are " +
                  (line_.mcmc ? "where the chains begin" : "given") +
                  "; ask for more iterations (IT) or a larger criterion (CC).");
  return true;
}

FAULT CIncompleteSample::FaultOfEstimation() const {
  if (result_.status == EStatus::TooFewCases) {
    return ProcedureFault(procedure_, "there are no more cases than variables",
                          "Name fewer variables, or use more cases.");
  }
  if (result_.status == EStatus::NoCases) {
    return ProcedureFault(procedure_, "no case has a value in any of the variables",
                          "Name other variables, or change the selection of cases.");
  }
  VARIABLELIST dependent;
  for (const int j : result_.dependent)
    dependent.push_back(variables_[static_cast<std::size_t>(j)].variable);
  return ProcedureFault(
      procedure_,
      CString("the covariance matrix is not positive definite: ") +
          (dependent.size() > 1 ? NameList(run_.job.data, dependent) : CString("variables")) +
          " depend on each other, or are never observed together",
      "Leave out variables that are sums of others or the same.");
}

void CIncompleteSample::WriteCases() const {
  WriteDataHeading(run_, variables_.size(),
                   line_.mcmc ? "filled in by multiple imputation"
                              : "maximum likelihood from all values that are there");
  const CASECOUNTS& counts = run_.source.Counts();
  CFactTable facts(LeftOutTable(run_, counts));
  facts.Add("Cases used", std::to_string(counts.used - patterns_->AllMissing()));
  if (run_.source.HasWeights()) facts.Add("Sum of their weights", CReport::Count(patterns_->N()));
  facts.Add("Complete cases", std::to_string(patterns_->Complete()));
  facts.Add("Cases with all values missing", std::to_string(patterns_->AllMissing()));
  facts.Add("Patterns of missing values", std::to_string(patterns_->Patterns().size()));
  facts.Write(report_);
  WriteDataWarnings(run_, counts);
  for (const CString& warning : warnings_) report_.Warning(warning);
}

void CIncompleteSample::WriteHistory() const {
  TABLE table;
  table.columns = {{"Iteration", false}, {"Log-likelihood", false}, {"Rise", false}};
  const std::vector<double>& values = result_.logLikelihoods;
  constexpr std::size_t kShown = 10;
  constexpr int kMore = 3;  // decimals: the last rises are small
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i >= kShown && i + kShown < values.size()) continue;
    table.rows.push_back(
        {std::to_string(i), report_.Number(values[i]),
         i == 0 ? CString()
                : CReport::Number(values[i] - values[i - 1], report_.Numbers().decimals + kMore)});
  }
  report_.Subsection(CString(line_.mcmc ? "Convergence of EM: " : "Convergence: ") +
                     CountText(result_.iterations, "iteration") + ", -2 log likelihood " +
                     report_.Number(-2 * values.back()));
  report_.Table(table);
}
