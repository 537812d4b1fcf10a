#include "engine/procedures/LoadingTables.h"

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
