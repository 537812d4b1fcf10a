#include "engine/procedures/OrdinalFactorSections.h"

#include <algorithm>
#include <cmath>

#include "engine/procedures/LoadingTables.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/FactorRotations.h"
#include "host/Numbers.h"

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

constexpr int kGradientDecimals = 12;

void WriteThresholds(CReport& report, const COrdinalFactorData& data,
                     const ORDINALFACTORSOLUTION& solution, const MatrixXd& covariance) {
  const stats::OrdinalFactorParameters& parameters = solution.result.parameters;
  TABLE table;
  table.narrowest = static_cast<std::size_t>(report.Numbers().width);
  table.repeated = 2;
  table.columns = {{"Variable", true}, {"Category", true}, {"Threshold", false}};
  if (covariance.size() > 0) table.columns.push_back({"Standard error", false});
  table.columns.push_back({"Standardised", false});
  for (int j = 0; j < parameters.Variables(); ++j) {
    const auto at = static_cast<std::size_t>(j);
    const double deviation =
        std::sqrt(solution.residualVariance + parameters.slopes.row(j).squaredNorm());
    const VectorXd& threshold = parameters.threshold[at];
    for (Index a = 0; a < threshold.size(); ++a) {
      const auto& values = data.Variables().all[at].values.values;
      std::vector<CString> row = {a == 0 ? data.Names()[at] : CString(),
                                  CategoryText(values[static_cast<std::size_t>(a)]),
                                  report.Number(threshold(a))};
      if (covariance.size() > 0) {
        const Index place = parameters.Offset(j) + a;
        row.push_back(report.Number(std::sqrt(std::max(0.0, covariance(place, place)))));
      }
      row.push_back(report.Number(threshold(a) / deviation));
      table.rows.push_back(std::move(row));
    }
  }
  report.Subsection("Thresholds");
  report.Table(table);
}

MatrixXd SlopeErrors(const stats::OrdinalFactorParameters& parameters, const MatrixXd& covariance) {
  MatrixXd errors(parameters.slopes.rows(), parameters.slopes.cols());
  for (int j = 0; j < parameters.Variables(); ++j) {
    const Index first = parameters.Offset(j) + parameters.CountOf(j) - errors.cols();
    errors.row(j) =
        covariance.diagonal().segment(first, errors.cols()).cwiseMax(0.0).cwiseSqrt().transpose();
  }
  return errors;
}

void WriteMatrix(CReport& report, const CString& heading, const COrdinalFactorData& data,
                 const MatrixXd& matrix) {
  report.Subsection(heading);
  report.Table(
      MatrixTable(report, data.Names(), FactorNames(static_cast<int>(matrix.cols())), matrix));
}

void WriteRotations(CReport& report, const COrdinalFactorData& data,
                    const ORDINALFACTORSOLUTION& solution, const VectorXd& uniqueness,
                    bool errors) {
  WriteLoadings(report, "VARIMAX-rotated loadings (rows normalised)", data.Names(),
                solution.varimax.loadings, uniqueness);
  stats::OrdinalFactorParameters rotated = solution.result.parameters;
  rotated.slopes *= solution.varimax.transformation;
  MatrixXd covariance;
  if (errors) {
    const MatrixXd information = stats::RotateInformation(
        solution.result.parameters, solution.result.information, solution.varimax.transformation);
    covariance = stats::RestrictedCovariance(rotated, information, stats::VarimaxEquations);
    WriteMatrix(report, "Standard errors of the VARIMAX-rotated loadings", data,
                stats::LoadingErrors(rotated, covariance, solution.residualVariance));
  }
  const auto promax = stats::RotatePromax(solution.varimax.loadings);
  WriteLoadings(report, "PROMAX-rotated loadings (power 4)", data.Names(), promax.loadings,
                uniqueness);
  const std::vector<CString> factors = FactorNames(solution.factors);
  report.Subsection("Correlations of the PROMAX factors");
  report.Table(TriangleTable(report, factors, promax.correlation));
  if (!errors) return;
  const auto promaxErrors =
      stats::EstimatePromaxErrors(rotated, covariance, solution.residualVariance);
  WriteMatrix(report, "Standard errors of the PROMAX-rotated loadings", data,
              promaxErrors.loadings);
  report.Subsection("Standard errors of the correlations of the PROMAX factors");
  TABLE table = TriangleTable(report, factors, promaxErrors.correlation);
  for (auto& row : table.rows) row.pop_back();  // the diagonal is 1
  report.Table(table);
}

void WritePairs(CReport& report, const COrdinalFactorData& data,
                std::vector<stats::PairFit> pairs) {
  constexpr std::size_t kShown = 10;
  const auto size = [](const stats::PairFit& fit) {
    return fit.df > 0 ? fit.chiSquare / fit.df : 0;
  };
  std::stable_sort(pairs.begin(), pairs.end(),
                   [&](const auto& a, const auto& b) { return size(a) > size(b); });
  pairs.resize(std::min(pairs.size(), kShown));
  TABLE table;
  table.repeated = 2;
  table.columns = {{"Variable", true}, {"Variable", true},         {"Chi-square", false},
                   {"df", false},      {"Chi-square / df", false}, {"Residual", false}};
  for (const stats::PairFit& fit : pairs) {
    table.rows.push_back({data.Names()[static_cast<std::size_t>(fit.first)],
                          data.Names()[static_cast<std::size_t>(fit.second)],
                          report.Number(fit.chiSquare), CReport::Count(fit.df),
                          report.Number(size(fit)), report.Number(fit.residual)});
  }
  report.Subsection("Pairs of variables that fit worst");
  report.Table(table);
}

const char* StepText(stats::EFactorStep step) {
  switch (step) {
    case stats::EFactorStep::Em:
      return "EM";
    case stats::EFactorStep::Newton:
      return "Newton";
    case stats::EFactorStep::FinerQuadrature:
      return "finer quadrature";
  }
  return "";
}

}  // namespace

void WriteOrdinalFactorHistory(CReport& report, const stats::OrdinalFactorResult& result) {
  constexpr std::size_t kShown = 10;
  TABLE table;
  table.columns = {{"Step", false}, {"Log-likelihood", false}, {"Gradient", false}, {"Next", true}};
  const auto& history = result.history;
  for (std::size_t k = 0; k < history.size(); ++k) {
    if (k >= kShown && k + kShown < history.size()) continue;
    const CString next = k + 1 == history.size() ? "" : StepText(history[k].next);
    table.rows.push_back({std::to_string(k), report.Number(history[k].logLikelihood),
                          CReport::Number(history[k].largestGradient, kGradientDecimals), next});
  }
  report.Subsection("Convergence");
  report.Table(table);
  report.Gap();
  report.Paragraph("The gradient is the largest one of the mean log-likelihood of a case.");
  const bool refined = std::any_of(history.begin(), history.end(), [](const auto& step) {
    return step.next == stats::EFactorStep::FinerQuadrature;
  });
  if (!refined) return;
  report.Gap();
  report.Paragraph(
      "The quadrature could not follow the likelihood and was refined, in the end to " +
      std::to_string(result.nodes) + " points in each dimension.");
}

void WriteOrdinalFactorFit(ENGINERUN& run, const COrdinalFactorData& data,
                           const ORDINALFACTORSOLUTION& solution) {
  CReport& report = run.report;
  const double logLikelihood = solution.result.logLikelihood;
  const double parameters = solution.FreeParameters();
  TABLE table;
  table.columns = {{"Fit", true}, {"Value", false}, {"df", false}, {"p", false}};
  const auto add = [&](const CString& what, double value) {
    table.rows.push_back({what, report.Number(value)});
  };
  const auto test = [&](const CString& what, double value, double df) {
    table.rows.push_back({what, report.Number(value), CReport::Count(df),
                          CReport::Probability(stats::ChiSquareUpper(value, df))});
  };
  add("-2 log-likelihood", -2 * logLikelihood);
  table.rows.push_back({"Parameters", CReport::Count(parameters)});
  add("Akaike's criterion (AIC)", -2 * logLikelihood + 2 * parameters);
  add("Bayesian criterion (BIC)", -2 * logLikelihood + parameters * std::log(data.Patterns()->N()));
  double thresholds = 0;
  for (const auto& threshold : solution.result.parameters.threshold)
    thresholds += static_cast<double>(threshold.size());
  test("Chi-square against independence",
       2 * (logLikelihood - stats::IndependenceLogLikelihood(*data.Patterns())),
       parameters - thresholds);
  const stats::PatternFit patterns =
      stats::FitPatterns(*data.Patterns(), solution.scores.logLikelihoods, parameters);
  if (patterns.usable) {
    test("Likelihood ratio of all patterns", patterns.likelihoodRatio, patterns.df);
    test("Pearson's chi-square of all patterns", patterns.chiSquare, patterns.df);
  }
  const auto pairs =
      stats::FitPairs(data.Tables(), solution.result.parameters, solution.link, run.threads);
  double squares = 0;
  for (const stats::PairFit& pair : pairs) squares += pair.residual * pair.residual;
  if (!pairs.empty()) {
    add("Root mean square residual of pairs",
        std::sqrt(squares / static_cast<double>(pairs.size())));
  }
  report.Subsection("Fit");
  report.Table(table);
  if (!patterns.usable) {
    report.Gap();
    report.Paragraph(
        data.Patterns()->Complete() < data.Patterns()->Cases()
            ? "There is no test against all patterns of answers, because answers are missing."
            : "There is no test against all patterns of answers: there are more possible "
              "patterns than cases.");
  }
  WritePairs(report, data, pairs);
}

void WriteOrdinalFactorEstimates(CReport& report, const COrdinalFactorData& data,
                                 const ORDINALFACTORSOLUTION& solution, bool errors) {
  const stats::OrdinalFactorParameters& parameters = solution.result.parameters;
  MatrixXd covariance;
  if (errors) {
    covariance = stats::RestrictedCovariance(parameters, solution.result.information,
                                             stats::PrincipalAxesEquations);
  }
  const VectorXd uniqueness = 1 - solution.loadings.rowwise().squaredNorm().array();
  WriteThresholds(report, data, solution, covariance);
  WriteMatrix(report, "Slopes of the response functions, unrotated", data, parameters.slopes);
  if (errors) {
    WriteMatrix(report, "Standard errors of the slopes", data, SlopeErrors(parameters, covariance));
  }
  WriteLoadings(report, "Unrotated loadings", data.Names(), solution.loadings, uniqueness);
  if (errors) {
    WriteMatrix(report, "Standard errors of the unrotated loadings", data,
                stats::LoadingErrors(parameters, covariance, solution.residualVariance));
  }
  if (solution.factors > 1) WriteRotations(report, data, solution, uniqueness, errors);
}
