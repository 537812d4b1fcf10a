#include "engine/procedures/IncompleteData.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "engine/procedures/ProcedureReport.h"
#include "engine/screen/CasesSections.h"
#include "engine/stats/IncompleteNormal.h"
#include "engine/stats/Univariate.h"
#include "host/Numbers.h"

namespace {

using Eigen::Index;
using stats::EStatus;

class CExpectationMaximisation {
 public:
  CExpectationMaximisation(ENGINERUN& run, const PROCEDURE& procedure)
      : run_(run),
        procedure_(procedure),
        report_(run.report),
        em_(std::get<MULTIPLEIMPUTATION>(procedure.what)) {
    for (const std::int32_t variable : em_.variables)
      names_.push_back(ShownName(run.job.data, variable));
  }

  bool Run(FAULT& fault) {
    if (!ReadPatterns(fault)) return false;
    result_ = stats::EstimateIncompleteNormal(*patterns_, static_cast<int>(em_.iterations),
                                              em_.convergence);
    WriteCases();
    if (!CheckResult(fault)) return false;
    WriteHistory();
    WriteEstimates();
    Impute();
    return true;
  }

 private:
  bool ReadPatterns(FAULT& fault) {
    const auto p = static_cast<int>(names_.size());
    std::vector<CASECOLUMN> columns;
    for (const std::int32_t variable : em_.variables) columns.push_back({variable, {}});
    run_.source.SetColumns(std::move(columns));
    run_.source.SetListwise(false);
    stats::CUnivariate univariate(p, stats::EDeletion::Pairwise, run_.threads);
    if (!run_.Pass(
            run_.source, [&](const CASEBLOCK& block) { univariate.Add(block.cells); }, fault)) {
      return false;
    }
    Eigen::VectorXd center(p), scale(p);
    for (int j = 0; j < p; ++j) {
      const stats::UnivariateResult one = univariate.Result(j);
      center(j) = one.mean;
      scale(j) = one.sd;
      missing_.push_back(run_.source.Counts().used - one.cases);
      if (one.status == EStatus::Ok && one.sd > 0) continue;
      const CString& name = names_[static_cast<std::size_t>(j)];
      fault = ProcedureFault(procedure_,
                             one.status == EStatus::NoCases
                                 ? "all values of variable " + name + " are missing"
                                 : "variable " + name + ": " + stats::StatusText(one.status),
                             "Leave the variable out of the list.");
      return false;
    }
    patterns_ = std::make_unique<stats::CMissingPatterns>(std::move(center), std::move(scale));
    return run_.Pass(
        run_.source, [this](const CASEBLOCK& block) { patterns_->Add(block.cells); }, fault);
  }

  void WriteCases() {
    WriteDataHeading(run_, names_.size(), "maximum likelihood from all values that are there");
    CFactTable facts;
    facts.Add("Cases in the data file", std::to_string(run_.file.Records()));
    facts.Add("Cases used", std::to_string(run_.source.Counts().used - patterns_->AllMissing()));
    facts.Add("Complete cases", std::to_string(patterns_->Complete()));
    facts.Add("Cases with all values missing", std::to_string(patterns_->AllMissing()));
    facts.Add("Patterns of missing values", std::to_string(patterns_->Patterns().size()));
    facts.Write(report_);
    WriteDataWarnings(run_, run_.source.Counts());
    report_.Section("EM: an incomplete multivariate normal sample");
    VARIABLELIST ordinal;
    for (const std::int32_t variable : em_.variables) {
      if (run_.job.data.variable[static_cast<std::size_t>(variable)].type == kOrdinal)
        ordinal.push_back(variable);
    }
    if (!ordinal.empty()) {
      report_.Warning("EM takes the values as those of normal variables, those of the ordinal " +
                      NameList(run_.job.data, ordinal) + " too.");
    }
  }

  bool CheckResult(FAULT& fault) {
    if (result_.status == EStatus::Ok) return true;
    if (result_.status == EStatus::NotConverged) {
      report_.Warning("EM has not converged in " + std::to_string(result_.iterations) +
                      " iterations: the last one changed a mean or covariance by " +
                      FormatShortest(result_.change) +
                      " standard deviations. The last values are given; ask for more iterations "
                      "(IT) or a larger criterion (CC).");
      return true;
    }
    const bool few = result_.status == EStatus::TooFewCases;
    fault = ProcedureFault(
        procedure_,
        few ? "there are no more cases than variables"
            : CString("the covariance matrix is not positive definite: variables depend on each "
                      "other, or are never observed together"),
        few ? "Name fewer variables." : "Leave out variables that are sums of others or the same.");
    return false;
  }

  void WriteHistory() {
    TABLE table;
    table.columns = {{"Iteration", false}, {"Log-likelihood", false}, {"Rise", false}};
    const std::vector<double>& values = result_.logLikelihoods;
    constexpr std::size_t kShown = 10;
    constexpr int kMore = 3;  // decimals: the last rises are small
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i >= kShown && i + kShown < values.size()) continue;
      table.rows.push_back({std::to_string(i), report_.Number(values[i]),
                            i == 0 ? CString()
                                   : CReport::Number(values[i] - values[i - 1],
                                                     report_.Numbers().decimals + kMore)});
    }
    report_.Subsection("Convergence: " + std::to_string(result_.iterations) +
                       " iterations, -2 log "
                       "likelihood " +
                       report_.Number(-2 * values.back()));
    report_.Table(table);
  }

  void WriteEstimates() {
    TABLE table;
    table.narrowest = static_cast<std::size_t>(report_.Numbers().width);
    table.columns = {{"Variable", true}, {"Missing", false}, {"Mean", false}, {"St. dev.", false}};
    for (std::size_t j = 0; j < names_.size(); ++j) {
      const auto at = static_cast<Index>(j);
      table.rows.push_back({names_[j], std::to_string(missing_[j]),
                            report_.Number(result_.mean(at)),
                            report_.Number(std::sqrt(result_.covariance(at, at)))});
    }
    report_.Subsection("Means and standard deviations (divisor n)");
    report_.Table(table);
    report_.Subsection("Covariance matrix (divisor n)");
    report_.Table(TriangleTable(report_, names_, result_.covariance));
    const Eigen::VectorXd inverse = result_.covariance.diagonal().cwiseSqrt().cwiseInverse();
    report_.Subsection("Correlation matrix");
    report_.Table(TriangleTable(report_, names_,
                                inverse.asDiagonal() * result_.covariance * inverse.asDiagonal()));
  }

  // From here on the run has the expected values in place of the missing ones.
  void Impute() {
    using AllMissing = MULTIPLEIMPUTATION::AllMissing;
    const auto means = std::make_shared<stats::CConditionalMeans>(*patterns_, result_);
    const bool fillAll = em_.allMissing == AllMissing::Mean;
    CASEFUNCTION function;
    function.inputs = function.outputs = em_.variables;
    function.compute = [means, fillAll, p = names_.size()](const double* in, double* out) {
      const bool none = std::all_of(in, in + p, [](double x) { return std::isnan(x); });
      if (none && !fillAll) {
        std::fill(out, out + p, std::numeric_limits<double>::quiet_NaN());
      } else {
        means->Fill(in, out);
      }
    };
    run_.job.transformations.emplace_back(std::move(function));
    if (em_.allMissing == AllMissing::Delete) run_.job.emptyIn = em_.variables;
    report_.Gap();
    if (run_.files.Find("RA") == nullptr) {
      report_.Warning("The completed data are not saved: add RA=file to the output line.");
      return;
    }
    report_.Paragraph(
        CString("In the saved data missing values are replaced by their expected values given the "
                "observed ones. Cases with all values missing are ") +
        (em_.allMissing == AllMissing::Delete ? "left out."
         : fillAll                            ? "kept with the means."
                                              : "left as they are."));
  }

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  CReport& report_;
  const MULTIPLEIMPUTATION& em_;
  std::vector<CString> names_;
  std::vector<std::int64_t> missing_;
  std::unique_ptr<stats::CMissingPatterns> patterns_;
  stats::IncompleteNormalResult result_;
};

}  // namespace

bool RunExpectationMaximisation(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  return CExpectationMaximisation(run, procedure).Run(fault);
}
