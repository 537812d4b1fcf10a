#include "engine/procedures/FactorAnalysis.h"

#include <algorithm>

#include "engine/procedures/Eigenvalues.h"
#include "engine/procedures/FactorSections.h"
#include "engine/procedures/LoadingTables.h"
#include "engine/run/Estimates.h"
#include "engine/screen/AnalysisMoments.h"
#include "engine/screen/CasesSections.h"
#include "engine/stats/FactorAnalysis.h"
#include "engine/stats/Moments.h"
#include "engine/stats/Rotation.h"

namespace {

using Eigen::Index;
using Eigen::MatrixXd;

class CFactorAnalysis {
 public:
  CFactorAnalysis(ENGINERUN& run, const PROCEDURE& procedure)
      : run_(run),
        procedure_(procedure),
        report_(run.report),
        fa_(std::get<FACTORANALYSIS>(procedure.what)) {}

  bool Run(FAULT& fault) {
    if (!Read(fault) || !ChooseFactors(fault)) return false;
    WriteHeading();
    WriteEigenvalues(run_, components_.eigenvalues, chance_);
    if (!Extract(fault)) return false;
    WriteFactorFit(report_, result_.fit, !variables_.ordinal.empty());
    WriteFactorWarnings(report_, names_, result_, SmallestEigenvalue());
    varimax_ = stats::RotateVarimax(result_.loadings);
    WriteFactorSolutions(report_, names_, result_, varimax_);
    WriteResidualCorrelations(report_, names_, moments_.matrix, result_.residual);
    if (run_.sampling != nullptr) NoteEstimates();
    if (fa_.scores) SaveScores();
    return true;
  }

 private:
  bool Read(FAULT& fault) {
    std::vector<CString> warnings;
    if (!FindScreenVariables(run_, variables_, warnings, fault) ||
        !EstimateAnalysisMoments(run_, variables_, MOMENTS::Correlations, moments_, fault)) {
      return false;
    }
    WriteDataSection(run_, variables_);
    for (const CString& warning : warnings) report_.Warning(warning);
    report_.Section("Exploratory factor analysis");
    for (const SCREENVARIABLE& variable : variables_.all) names_.push_back(variable.name);
    components_ = stats::EstimateComponents(moments_.matrix);
    if (run_.sampling != nullptr && run_.sampling->isSample) return true;
    chance_ = stats::AnalyseParallel(static_cast<int>(moments_.matrix.rows()), moments_.smallestN,
                                     kChanceSamples, run_.seed, run_.threads);
    return true;
  }

  double SmallestEigenvalue() const {
    return components_.eigenvalues(components_.eigenvalues.size() - 1);
  }

  static bool HasFreedom(Index variables, int factors) {
    return factors < variables &&
           stats::FactorDegreesOfFreedom(static_cast<int>(variables), factors) >= 0;
  }

  bool ChooseFactors(FAULT& fault) {
    const Index p = moments_.matrix.rows();
    factors_ = static_cast<int>(fa_.factors);
    const bool chosen = factors_ > 0;
    if (!chosen && run_.sampling != nullptr && run_.sampling->settled) {
      factors_ = static_cast<int>(*run_.sampling->settled);
    } else if (!chosen) {
      factors_ = static_cast<int>((components_.eigenvalues.array() > 1).count());
      factors_ = std::max(factors_, 1);
    }
    if (HasFreedom(p, factors_)) return true;
    int most = 0;
    while (HasFreedom(p, most + 1)) ++most;
    fault = ProcedureFault(
        procedure_,
        CountText(factors_, "factor") + " cannot be estimated from " + CountText(p, "variable") +
            (chosen ? CString() : " (as many eigenvalues are above 1)") +
            ": the degrees of freedom would be negative",
        most > 0 ? "Ask for at most " + CountText(most, "factor") + " (NF), or use more variables."
                 : CString("Use at least three variables."));
    return false;
  }

  // Bootstrapping keeps to the number of factors.
  void NoteEstimates() {
    run_.sampling->settled = factors_;
    run_.estimates->push_back(EigenvalueEstimates(components_.eigenvalues));
    NoteRotatedLoadings(run_, names_, varimax_.loadings);
    ESTIMATES uniquenesses = MakeEstimates("Uniquenesses");
    for (std::size_t i = 0; i < names_.size(); ++i)
      AddEstimate(uniquenesses, names_[i], result_.uniqueness(static_cast<Index>(i)));
    run_.estimates->push_back(std::move(uniquenesses));
  }

  void WriteHeading() {
    CFactTable facts;
    facts.Add("Method", fa_.minres ? "MINRES (unweighted least squares)" : "Maximum likelihood");
    const bool ordinal = !variables_.ordinal.empty();
    facts.Add("Correlations", !ordinal                     ? "Pearson"
                              : variables_.numeric.empty() ? "polychoric"
                                                           : "by type of the variables");
    facts.Add("n", CReport::Count(moments_.smallestN));
    facts.Add("Factors",
              std::to_string(factors_) + (fa_.factors > 0 ? "" : " (eigenvalues above 1)"));
    const bool known = chance_.mean.size() > 0;
    if (known) {
      facts.Add("Factors by parallel analysis",
                std::to_string(stats::CountAboveChance(components_.eigenvalues, chance_)));
    }
    facts.Write(report_);
    if (!known) return;
    report_.Gap();
    report_.Paragraph(ParallelAnalysisText(run_, true));
  }

  bool Extract(FAULT& fault) {
    result_ = stats::EstimateFactors(
        moments_.matrix, moments_.smallestN, factors_,
        fa_.minres ? stats::EFactorMethod::Minres : stats::EFactorMethod::MaximumLikelihood);
    if (result_.status == stats::EStatus::Ok) return true;
    if (result_.status == stats::EStatus::NotPositiveDefinite) {
      fault = ProcedureFault(
          procedure_,
          "the correlation matrix is not positive definite (smallest eigenvalue " +
              CReport::Digits(SmallestEigenvalue()) + "), so that there is no likelihood",
          "Use MINRES (MR), leave out variables that are sums of others, or use listwise "
          "deletion.");
    } else {
      fault = ProcedureFault(
          procedure_,
          CString("the factors cannot be estimated: ") + stats::StatusText(result_.status),
          "Ask for fewer factors (NF), or use MINRES (MR).");
    }
    return false;
  }

  void SaveScores() {
    if (run_.files.Find("RA") == nullptr) {
      report_.Warning("FS: the scores are not saved. Add RA=file to the output line.");
      return;
    }
    if (stats::CheckPositiveDefinite(moments_.matrix).status != stats::EStatus::Ok) {
      report_.Warning("FS: there are no scores, because the matrix is not positive definite.");
      return;
    }
    const MatrixXd weights = stats::RegressionScoreWeights(moments_.matrix, varimax_.loadings);
    const VARIABLELIST outputs =
        AddVariables(run_.job, "FACTOR", static_cast<std::size_t>(factors_));
    AddScoreVariables(run_, variables_, moments_, weights, outputs);
    report_.Gap();
    report_.Paragraph(
        CString("Regression scores of the ") +
        (factors_ > 1 ? "VARIMAX-rotated factors" : "factor") + " are saved with the data as " +
        NameList(run_.job.data, outputs) + ". A case with a missing value has none." +
        (variables_.ordinal.empty() ? ""
                                    : " An ordinal variable enters by the mean of its underlying "
                                      "variable within the category."));
  }

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  CReport& report_;
  const FACTORANALYSIS& fa_;
  SCREENVARIABLES variables_;
  ANALYSISMOMENTS moments_;
  stats::ComponentsResult components_;
  stats::ParallelAnalysisResult chance_;
  std::vector<CString> names_;
  int factors_ = 0;
  stats::FactorResult result_;
  stats::VarimaxResult varimax_;
};

}  // namespace

bool RunFactorAnalysis(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  return CFactorAnalysis(run, procedure).Run(fault);
}
