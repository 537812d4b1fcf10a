#include "engine/procedures/OrdinalRegression.h"

#include <cmath>

#include "engine/procedures/RegressionData.h"
#include "engine/procedures/RunProcedures.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/OrdinalRegression.h"

namespace {

using stats::EStatus;

void AddRow(const CReport& report, TABLE& table, const CString& name, double estimate,
            double error) {
  if (error == 0) {  // fixed
    table.rows.push_back({name, report.Number(estimate), "(fixed)"});
    return;
  }
  const double z = estimate / error;
  table.rows.push_back({name, report.Estimate(estimate, error), report.Estimate(error, error),
                        report.Number(z), CReport::Probability(stats::NormalTwoSided(z))});
}

void WriteCategories(ENGINERUN& run, const CRegressionData& data,
                     const stats::OrdinalRegressionResult& result) {
  TABLE table;
  table.columns = {{"Category", true}, {"Frequency", false}, {"Percent", false}};
  for (std::size_t j = 0; j < result.frequency.size(); ++j) {
    constexpr double kPercent = 100;
    table.rows.push_back({CategoryText(data.Categories().values[j]),
                          CReport::Count(result.frequency[j]),
                          CReport::Number(kPercent * result.frequency[j] / result.n, 1)});
  }
  run.report.Subsection("Categories of " + data.YName());
  run.report.Table(table);
}

std::vector<ESTIMATES::PARAMETER> ParametersOf(const CRegressionData& data,
                                               const stats::OrdinalRegressionResult& result,
                                               bool alternative) {
  std::vector<ESTIMATES::PARAMETER> parameters;
  const stats::AlternativeParameters other = stats::Alternative(result);
  const auto& threshold = alternative ? other.threshold : result.threshold;
  const auto& error = alternative ? other.thresholdError : result.thresholdError;
  for (std::size_t j = 0; j < threshold.size(); ++j) {
    const CString name = "Threshold " + CategoryText(data.Categories().values[j]) + " | " +
                         CategoryText(data.Categories().values[j + 1]);
    parameters.push_back({name, threshold[j], error[j]});
  }
  if (alternative) parameters.push_back({"(Intercept)", other.intercept, other.interceptError});
  for (std::size_t j = 0; j < result.slope.size(); ++j)
    parameters.push_back({data.Name(j), result.slope[j], result.slopeError[j]});
  return parameters;
}

void WriteEstimates(ENGINERUN& run, const std::vector<ESTIMATES::PARAMETER>& parameters) {
  CReport& report = run.report;
  TABLE table;
  table.narrowest = static_cast<std::size_t>(report.Numbers().width);
  table.columns = {
      {"Parameter", true}, {"Estimate", false}, {"Std. error", false}, {"z", false}, {"p", false}};
  for (const auto& one : parameters) AddRow(report, table, one.name, one.value, one.error);
  report.Subsection("Estimates");
  report.Table(table);
}

void WriteOddsRatios(ENGINERUN& run, const CRegressionData& data,
                     const stats::OrdinalRegressionResult& result) {
  constexpr double k95 = 1.959963984540054;
  CReport& report = run.report;
  TABLE table;
  table.columns = {{"Variable", true}, {"Odds ratio", false}, {"95% from", false}, {"to", false}};
  for (std::size_t j = 0; j < result.slope.size(); ++j) {
    const double reach = k95 * result.slopeError[j];
    const double ratio = std::exp(result.slope[j]);
    const double error = ratio * result.slopeError[j];
    table.rows.push_back({data.Name(j), report.Estimate(ratio, error),
                          report.Estimate(std::exp(result.slope[j] - reach), error),
                          report.Estimate(std::exp(result.slope[j] + reach), error)});
  }
  report.Subsection("Odds ratios of a higher category for one unit of x");
  report.Table(table);
}

void WriteFit(ENGINERUN& run, const stats::OrdinalRegressionResult& result) {
  CReport& report = run.report;
  CFactTable facts;
  facts.Add("n", CReport::Count(result.n));
  facts.Add("Log-likelihood", report.Number(result.logLikelihood));
  facts.Add("Log-likelihood without x", report.Number(result.logLikelihoodNull));
  facts.Add("Likelihood ratio chi-square", report.Number(result.ratio));
  facts.Add("df", CReport::Count(result.df));
  facts.Add("p", CReport::Probability(result.p));
  facts.Add("R-square (McFadden)", report.Number(result.mcFadden));
  facts.Add("R-square (Nagelkerke)", report.Number(result.nagelkerke));
  facts.Write(report);
}

}  // namespace

bool RunOrdinalRegression(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  const auto& regression = std::get<REGRESSION>(procedure.what);
  const bool probit = regression.method == REGRESSION::Method::Probit;
  for (const std::int32_t y : regression.y) {
    CRegressionData data(run, procedure, regression.x);
    if (!data.Prepare(y, true, fault)) return false;
    const auto result = stats::EstimateOrdinalRegression(
        [&](const auto& work) { return data.Pass(work, fault); },
        static_cast<int>(regression.x.size()), static_cast<int>(data.Categories().values.size()),
        probit ? stats::ELink::Probit : stats::ELink::Logistic, run.threads);
    if (result.stopped) return false;
    const CString title = CString(probit ? "Probit" : "Logistic") + " regression of " +
                          data.YName() + " on " + NameList(run.job.data, regression.x);
    data.WriteHeading(title);
    if (result.status != EStatus::Ok) {
      fault = data.FaultOf(result.status, result.variable);
      return false;
    }
    run.report.Paragraph(
        CString("P(y <= category) = F(threshold - x'b), F being the ") +
        (probit ? "standard normal" : "logistic") +
        " distribution function: a positive coefficient goes with higher categories. Maximum "
        "likelihood; standard errors from the observed information." +
        (regression.alternativeParameters
             ? " Alternative parameterization: F(threshold - intercept - x'b) with the first "
               "threshold 0."
             : ""));
    run.report.Gap();
    WriteFit(run, result);
    WriteCategories(run, data, result);
    auto parameters = ParametersOf(data, result, regression.alternativeParameters);
    WriteEstimates(run, parameters);
    if (!probit) WriteOddsRatios(run, data, result);
    if (run.estimates != nullptr) {
      run.estimates->push_back({title, result.n, kLargeSample, std::move(parameters)});
    }
    data.WarnOfCollinearity(result.smallestPivot);
    if (ReadsThresholds(run.job)) {
      run.report.Warning("The thresholds that FT fixes are not used in the regression of " +
                         data.YName() + ", which estimates its own.");
    }
  }
  return true;
}
