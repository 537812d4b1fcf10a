#include "engine/procedures/PrincipalComponents.h"

#include "engine/procedures/Eigenvalues.h"
#include "engine/run/Estimates.h"
#include "engine/screen/AnalysisMoments.h"
#include "engine/screen/CasesSections.h"

namespace {

using Eigen::Index;

void NoteEstimates(ENGINERUN& run, const stats::ComponentsResult& result, Index count,
                   const std::vector<CString>& variables, const std::vector<CString>& names) {
  if (run.sampling == nullptr) return;
  run.estimates->push_back(EigenvalueEstimates(result.eigenvalues));
  run.estimates->push_back(
      LoadingEstimates("Loadings (order and signs of the components matched to all cases)",
                       variables, names, result.loadings.leftCols(count)));
}

std::vector<CString> ComponentNames(Index count) {
  std::vector<CString> names;
  for (Index j = 1; j <= count; ++j) names.push_back("PC" + std::to_string(j));
  return names;
}

class CPrincipalComponents {
 public:
  CPrincipalComponents(ENGINERUN& run, const PROCEDURE& procedure)
      : run_(run),
        procedure_(procedure),
        report_(run.report),
        pc_(std::get<PRINCIPALCOMPONENTS>(procedure.what)) {}

  bool Run(FAULT& fault) {
    if (!Read(fault) || !Analyse(fault)) return false;
    WriteFacts();
    WriteEigenvalues(run_, result_.eigenvalues, chance_);
    WriteComponents();
    NoteEstimates(run_, result_, count_, rows_, names_);
    if (pc_.scores) SaveScores();
    return true;
  }

 private:
  bool Read(FAULT& fault) {
    std::vector<CString> warnings;
    if (!FindScreenVariables(run_, variables_, warnings, fault)) return false;
    const auto p = static_cast<std::int64_t>(variables_.all.size());
    if (pc_.components > p) {
      fault = ProcedureFault(procedure_,
                             CountText(pc_.components, "component") +
                                 (pc_.components == 1 ? " is" : " are") + " asked for, and there " +
                                 (p == 1 ? "is " : "are ") + CountText(p, "variable"),
                             "Ask for no more components than variables (NC).");
      return false;
    }
    count_ = static_cast<Index>(pc_.components > 0 ? pc_.components : p);
    if (!EstimateAnalysisMoments(run_, variables_,
                                 pc_.ofCorrelations ? MOMENTS::Correlations : MOMENTS::Covariances,
                                 moments_, fault)) {
      return false;
    }
    WriteDataSection(run_, variables_);
    for (const CString& warning : warnings) report_.Warning(warning);
    for (const SCREENVARIABLE& variable : variables_.all) rows_.push_back(variable.name);
    names_ = ComponentNames(count_);
    return true;
  }

  bool Analyse(FAULT& fault) {
    report_.Section(CString("Principal components of the ") +
                    (pc_.ofCorrelations ? "correlation" : "covariance") + " matrix");
    result_ = stats::EstimateComponents(moments_.matrix);
    if (result_.status != stats::EStatus::Ok) {
      fault = ProcedureFault(
          procedure_, CString("the matrix has no components: ") + stats::StatusText(result_.status),
          "Screen the variables first.");
      return false;
    }
    if (run_.sampling != nullptr && run_.sampling->isSample) return true;
    const double n = moments_.smallestN;
    if (pc_.ofCorrelations) {
      chance_ = stats::AnalyseParallel(static_cast<int>(rows_.size()), n, kChanceSamples, run_.seed,
                                       run_.threads);
    } else {
      const Eigen::VectorXd deviations = moments_.matrix.diagonal().cwiseMax(0).cwiseSqrt();
      chance_ = stats::AnalyseParallel(deviations, n, kChanceSamples, run_.seed, run_.threads);
    }
    return true;
  }

  void WriteFacts() {
    const double smallest = result_.eigenvalues(result_.eigenvalues.size() - 1);
    if (!(smallest > 0)) {
      report_.Warning("The matrix is not positive definite: its smallest eigenvalue is " +
                      CReport::Digits(smallest) + ".");
    }
    CFactTable facts;
    facts.Add("n", CReport::Count(moments_.smallestN));
    facts.Add("Components", std::to_string(count_));
    const bool known = chance_.mean.size() > 0;
    if (known) {
      facts.Add("Components by parallel analysis",
                std::to_string(stats::CountAboveChance(result_.eigenvalues, chance_)));
    }
    facts.Write(report_);
    if (!known) return;
    report_.Gap();
    report_.Paragraph(ParallelAnalysisText(run_, pc_.ofCorrelations));
  }

  void WriteComponents() {
    report_.Subsection("Coefficients: each component has squares that add up to 1");
    report_.Table(MatrixTable(report_, rows_, names_, result_.vectors.leftCols(count_)));
    report_.Subsection(pc_.ofCorrelations
                           ? "Loadings: correlations of the variables with the components"
                           : "Loadings: covariances of the variables with the components, these "
                             "having standard deviation 1");
    report_.Table(MatrixTable(report_, rows_, names_, result_.loadings.leftCols(count_)));
  }

  void SaveScores() {
    if (run_.files.Find("RA") == nullptr) {
      report_.Warning("PS: the scores are not saved. Add RA=file to the output line.");
      return;
    }
    Eigen::MatrixXd weights = result_.vectors.leftCols(count_);
    // Scores of a covariance matrix are sums of centred values.
    if (!pc_.ofCorrelations) weights = moments_.deviations.asDiagonal() * weights;
    const VARIABLELIST outputs = AddVariables(run_.job, "PC", static_cast<std::size_t>(count_));
    AddScoreVariables(run_, variables_, moments_, weights, outputs);
    report_.Gap();
    report_.Paragraph(
        "The component scores are saved with the data as " + NameList(run_.job.data, outputs) +
        "; their variances are the eigenvalues. A case with a missing value has none.");
  }

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  CReport& report_;
  const PRINCIPALCOMPONENTS& pc_;
  SCREENVARIABLES variables_;
  ANALYSISMOMENTS moments_;
  stats::ComponentsResult result_;
  stats::ParallelAnalysisResult chance_;
  std::vector<CString> rows_, names_;
  Index count_ = 0;
};

}  // namespace

bool RunPrincipalComponents(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  return CPrincipalComponents(run, procedure).Run(fault);
}
