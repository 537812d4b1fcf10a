#include "engine/procedures/LoadingTables.h"

#include "engine/run/Estimates.h"
#include "engine/stats/Rotation.h"

std::vector<CString> FactorNames(int factors) {
  std::vector<CString> names;
  for (int j = 1; j <= factors; ++j) names.push_back("Factor " + std::to_string(j));
  return names;
}

void WriteLoadings(CReport& report, const CString& heading, const std::vector<CString>& names,
                   const Eigen::MatrixXd& loadings, const Eigen::VectorXd& uniqueness) {
  Eigen::MatrixXd matrix = loadings;
  std::vector<CString> columns = FactorNames(static_cast<int>(loadings.cols()));
  if (uniqueness.size() > 0) {
    matrix.conservativeResize(Eigen::NoChange, loadings.cols() + 1);
    matrix.col(loadings.cols()) = uniqueness;
    columns.emplace_back("Uniqueness");
  }
  TABLE table = MatrixTable(report, names, columns, matrix);
  std::vector<CString> squares = {"Sum of squares"};
  for (Eigen::Index j = 0; j < loadings.cols(); ++j)
    squares.push_back(report.Number(loadings.col(j).squaredNorm()));
  table.rows.push_back(std::move(squares));
  report.Subsection(heading);
  report.Table(table);
}

void NoteRotatedLoadings(ENGINERUN& run, const std::vector<CString>& names,
                         const Eigen::MatrixXd& varimax) {
  const std::vector<CString> factors = FactorNames(static_cast<int>(varimax.cols()));
  const CString matched = " (order and signs of the factors matched to all cases)";
  run.estimates->push_back(
      LoadingEstimates((factors.size() > 1 ? "VARIMAX-rotated loadings" : "Loadings") + matched,
                       names, factors, varimax));
  if (factors.size() < 2) return;
  const auto promax = stats::RotatePromax(varimax);
  const bool defined = promax.loadings.allFinite() && promax.correlation.allFinite();
  if (!defined && !run.sampling->isSample) return;
  run.estimates->push_back(
      LoadingEstimates("PROMAX-rotated loadings" + matched, names, factors, promax.loadings));
  run.estimates->push_back(FactorCorrelationEstimates("Correlations of the PROMAX factors", factors,
                                                      promax.correlation));
}
