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

}  // namespace

bool RunPrincipalComponents(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  const auto& pc = std::get<PRINCIPALCOMPONENTS>(procedure.what);
  CReport& report = run.report;
  SCREENVARIABLES variables;
  std::vector<CString> warnings;
  if (!FindScreenVariables(run, variables, warnings, fault)) return false;
  const auto p = static_cast<std::int64_t>(variables.all.size());
  if (pc.components > p) {
    fault = ProcedureFault(procedure,
                           CountText(pc.components, "component") + " are asked for, and there " +
                               (p == 1 ? "is " : "are ") + CountText(p, "variable"),
                           "Ask for no more components than variables (NC).");
    return false;
  }
  ANALYSISMOMENTS moments;
  if (!EstimateAnalysisMoments(run, variables,
                               pc.ofCorrelations ? MOMENTS::Correlations : MOMENTS::Covariances,
                               moments, fault)) {
    return false;
  }
  WriteDataSection(run, variables);
  for (const CString& warning : warnings) report.Warning(warning);
  report.Section(CString("Principal components of the ") +
                 (pc.ofCorrelations ? "correlation" : "covariance") + " matrix");
  const auto result = stats::EstimateComponents(moments.matrix);
  if (result.status != stats::EStatus::Ok) {
    fault = ProcedureFault(
        procedure, CString("the matrix has no components: ") + stats::StatusText(result.status),
        "Screen the variables first.");
    return false;
  }
  if (!(result.eigenvalues(p - 1) > 0)) {
    report.Warning("The matrix is not positive definite: its smallest eigenvalue is " +
                   CReport::Digits(result.eigenvalues(p - 1)) + ".");
  }
  report.Line("  n = " + CReport::Count(moments.smallestN));
  WriteEigenvalues(run, result.eigenvalues, {});
  const Index count = pc.components > 0 ? static_cast<Index>(pc.components) : static_cast<Index>(p);
  std::vector<CString> rows;
  for (const SCREENVARIABLE& variable : variables.all) rows.push_back(variable.name);
  const std::vector<CString> names = ComponentNames(count);
  report.Subsection("Coefficients: each component has squares that add up to 1");
  report.Table(MatrixTable(report, rows, names, result.vectors.leftCols(count)));
  report.Subsection(pc.ofCorrelations
                        ? "Loadings: correlations of the variables with the components"
                        : "Loadings: covariances of the variables with the components, these "
                          "having standard deviation 1");
  report.Table(MatrixTable(report, rows, names, result.loadings.leftCols(count)));
  NoteEstimates(run, result, count, rows, names);
  if (!pc.scores) return true;
  if (run.files.Find("RA") == nullptr) {
    report.Warning("PS: the scores are not saved. Add RA=file to the output line.");
    return true;
  }
  Eigen::MatrixXd weights = result.vectors.leftCols(count);
  // Scores of a covariance matrix are sums of centred values.
  if (!pc.ofCorrelations) weights = moments.deviations.asDiagonal() * weights;
  const VARIABLELIST outputs = AddVariables(run.job, "PC", static_cast<std::size_t>(count));
  AddScoreVariables(run, variables, moments, weights, outputs);
  report.Gap();
  report.Paragraph("The component scores are saved with the data as " +
                   NameList(run.job.data, outputs) +
                   "; their variances are the eigenvalues. A case with a missing value has none.");
  return true;
}
