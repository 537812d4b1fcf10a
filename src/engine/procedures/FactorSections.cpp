#include "engine/procedures/FactorSections.h"

#include <algorithm>
#include <cmath>

#include "engine/procedures/LoadingTables.h"
#include "engine/procedures/ProcedureReport.h"
#include "engine/run/Estimates.h"
#include "host/Numbers.h"

using Eigen::Index;

void WriteFactorFit(CReport& report, const stats::FactorFit& fit, bool ordinal) {
  TABLE table;
  table.columns = {{"Fit", true}, {"Value", false}, {"df", false}, {"p", false}};
  const auto add = [&](const CString& what, double value) {
    table.rows.push_back({what, report.Number(value)});
  };
  const auto addTest = [&](const CString& what, double value, double df, double p) {
    table.rows.push_back(
        {what, report.Number(value), CReport::Count(df), df > 0 ? CReport::Probability(p) : "."});
  };
  if (fit.likelihood) {
    addTest("Chi-square, (n - 1) F", fit.chiSquare, fit.df, fit.p);
    addTest("Chi-square, Bartlett's factor", fit.bartlett, fit.df, fit.pBartlett);
  }
  if (fit.likelihood && fit.df > 0) {
    add("RMSEA", fit.rmsea);
    add("Tucker-Lewis index", fit.tuckerLewis);
  }
  add("Root mean square residual", fit.rootMeanSquareResidual);
  report.Subsection("Fit");
  report.Table(table);
  if (!fit.likelihood) {
    report.Gap();
    report.Paragraph(
        "The correlation matrix is not positive definite: there is no likelihood, and so no test "
        "of fit.");
  } else if (ordinal) {
    report.Gap();
    report.Paragraph(
        "The tests suppose a sample covariance matrix of normal variables; for polychoric and "
        "polyserial correlations they are descriptive.");
  }
}

void WriteFactorWarnings(CReport& report, const std::vector<CString>& names,
                         const stats::FactorResult& result, double smallestEigenvalue) {
  for (Index i = 0; i < result.heywood.size(); ++i) {
    if (result.heywood(i) == 0) continue;
    report.Warning("Heywood case: the uniqueness of " + names[static_cast<std::size_t>(i)] +
                   " is at its lower bound, " + FormatShortest(stats::kSmallestUniqueness) +
                   ". Fewer factors, or more variables for each, may help.");
  }
  constexpr double kNearlySingular = 1e-6;
  if (smallestEigenvalue < kNearlySingular) {
    report.Warning(CString("The correlation matrix is ") +
                   (smallestEigenvalue < 0 ? "not positive definite" : "nearly singular") +
                   ": its smallest eigenvalue is " + CReport::Digits(smallestEigenvalue) + ".");
  }
}

void WriteFactorSolutions(CReport& report, const std::vector<CString>& names,
                          const stats::FactorResult& result, const stats::VarimaxResult& varimax) {
  const auto factors = static_cast<int>(result.loadings.cols());
  WriteLoadings(report, "Unrotated loadings", names, result.loadings, result.uniqueness);
  if (factors < 2) return;
  WriteLoadings(report, "VARIMAX-rotated loadings (rows normalised)", names, varimax.loadings,
                result.uniqueness);
  const auto promax = stats::RotatePromax(varimax.loadings);
  WriteLoadings(report, "PROMAX-rotated loadings (power 4)", names, promax.loadings,
                result.uniqueness);
  report.Subsection("Correlations of the PROMAX factors");
  report.Table(TriangleTable(report, FactorNames(factors), promax.correlation));
}

namespace {

struct Residual {
  Index i, j;
  double value;
};

// Those off the diagonal, the largest first.
std::vector<Residual> LargestResiduals(const Eigen::MatrixXd& residual) {
  constexpr std::size_t kShown = 10;
  std::vector<Residual> all;
  for (Index i = 0; i < residual.rows(); ++i) {
    for (Index j = 0; j < i; ++j) all.push_back({j, i, residual(i, j)});
  }
  std::stable_sort(all.begin(), all.end(), [](const Residual& a, const Residual& b) {
    return std::fabs(a.value) > std::fabs(b.value);
  });
  all.resize(std::min(all.size(), kShown));
  return all;
}

}  // namespace

void WriteResidualCorrelations(CReport& report, const std::vector<CString>& names,
                               const Eigen::MatrixXd& correlation,
                               const Eigen::MatrixXd& residual) {
  const std::vector<Residual> all = LargestResiduals(residual);
  TABLE table;
  table.columns = {
      {"Variable", true}, {"Variable", true}, {"Correlation", false}, {"Residual", false}};
  for (const Residual& one : all) {
    table.rows.push_back({names[static_cast<std::size_t>(one.i)],
                          names[static_cast<std::size_t>(one.j)],
                          report.Number(correlation(one.i, one.j)), report.Number(one.value)});
  }
  report.Subsection("Largest residual correlations");
  report.Table(table);
}
