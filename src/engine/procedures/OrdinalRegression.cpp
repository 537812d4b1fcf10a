#include "engine/procedures/OrdinalRegression.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "engine/procedures/RegressionReport.h"
#include "engine/stats/IntervalRegression.h"
#include "engine/stats/OrdinalRegression.h"

namespace {

using stats::EStatus;

void WriteCategories(ENGINERUN& run, const CRegressionData& data,
                     const std::vector<double>& frequency) {
  const double n = std::accumulate(frequency.begin(), frequency.end(), 0.0);
  TABLE table;
  table.columns = {{"Category", true}, {"Frequency", false}, {"Percent", false}};
  for (std::size_t j = 0; j < frequency.size(); ++j) {
    constexpr double kPercent = 100;
    table.rows.push_back({CategoryText(data.Categories().values[j]), CReport::Count(frequency[j]),
                          CReport::Number(kPercent * frequency[j] / n, 1)});
  }
  run.report.Subsection("Categories of " + data.YName());
  run.report.Table(table);
}

CString ThresholdName(const std::vector<double>& values, std::size_t j) {
  return "Threshold " + CategoryText(values[j]) + " | " + CategoryText(values[j + 1]);
}

std::vector<ESTIMATES::PARAMETER> ParametersOf(const CRegressionData& data,
                                               const stats::OrdinalRegressionResult& result,
                                               bool alternative) {
  std::vector<ESTIMATES::PARAMETER> parameters;
  const stats::AlternativeParameters other = stats::Alternative(result);
  const auto& threshold = alternative ? other.threshold : result.threshold;
  const auto& error = alternative ? other.thresholdError : result.thresholdError;
  for (std::size_t j = 0; j < threshold.size(); ++j) {
    parameters.push_back({ThresholdName(data.Categories().values, j), threshold[j], error[j]});
  }
  if (alternative) parameters.push_back({"(Intercept)", other.intercept, other.interceptError});
  for (std::size_t j = 0; j < result.slope.size(); ++j)
    parameters.push_back({data.Name(j), result.slope[j], result.slopeError[j]});
  return parameters;
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
  AddLikelihoods(facts, report, result);
  facts.Add("R-square (McFadden)", report.Number(result.mcFadden));
  facts.Add("R-square (Nagelkerke)", report.Number(result.nagelkerke));
  facts.Write(report);
}

// One equation with thresholds of its own.
class CFreeEquation {
 public:
  CFreeEquation(ENGINERUN& run, const REGRESSION& regression, CRegressionData& data)
      : run_(run),
        regression_(regression),
        data_(data),
        probit_(regression.method == REGRESSION::Method::Probit) {}

  bool Run(const CString& title, FAULT& fault) {
    const auto result = stats::EstimateOrdinalRegression(
        [&](const auto& work) { return data_.Pass(work, fault); }, data_.Survey(),
        data_.Categories().counts, probit_ ? stats::ELink::Probit : stats::ELink::Logistic);
    if (result.stopped) return false;
    data_.WriteHeading(title);
    if (result.status != EStatus::Ok) {
      fault = data_.FaultOf(result.status, result.variable);
      return false;
    }
    const CString model = Model();
    run_.report.Paragraph(model);
    run_.report.Gap();
    WriteFit(run_, result);
    WriteCategories(run_, data_, result.frequency);
    auto parameters = ParametersOf(data_, result, regression_.alternativeParameters);
    WriteZTable(run_.report, "Estimates", "Parameter", parameters);
    if (!probit_) WriteOddsRatios(run_, data_, result);
    TellEstimates(run_, {title, result.n, kLargeSample, std::move(parameters), 0, model});
    data_.WarnOfCollinearity(result.smallestPivot);
    return true;
  }

 private:
  CString Model() const {
    return CString("P(y <= category) = F(threshold - x'b), F being the ") +
           (probit_ ? "standard normal" : "logistic") +
           " distribution function: a positive coefficient goes with higher categories. Maximum "
           "likelihood; standard errors from the observed information." +
           (regression_.alternativeParameters
                ? " Alternative parameterization: F(threshold - intercept - x'b) with the first "
                  "threshold 0."
                : "");
  }

  ENGINERUN& run_;
  const REGRESSION& regression_;
  CRegressionData& data_;
  bool probit_;
};

std::vector<ESTIMATES::PARAMETER> ParametersOf(const CRegressionData& data,
                                               const stats::IntervalRegressionResult& result,
                                               const GIVENTHRESHOLDS& given) {
  std::vector<ESTIMATES::PARAMETER> parameters;
  for (std::size_t j = 0; j < given.thresholds.size(); ++j)
    parameters.push_back({ThresholdName(given.values, j), given.thresholds[j], 0});
  const auto coefficients = CoefficientsOf(data, result.coefficient, result.standardError);
  parameters.insert(parameters.end(), coefficients.begin(), coefficients.end());
  return parameters;
}

void WriteFit(ENGINERUN& run, const stats::IntervalRegressionResult& result) {
  CReport& report = run.report;
  CFactTable facts;
  facts.Add("n", CReport::Count(result.n));
  AddLikelihoods(facts, report, result);
  AddResiduals(facts, report, result, result.sdKnown);
  facts.Write(report);
}

FAULT FaultOf(const PROCEDURE& procedure, const CRegressionData& data,
              const stats::IntervalRegressionResult& result) {
  if (result.status != EStatus::Boundary || result.variable >= 0) {
    return data.FaultOf(result.status, result.variable);
  }
  return ProcedureFault(procedure,
                        "all cases of " + data.YName() +
                            " lie in two neighbouring categories, so that the residual standard "
                            "deviation has no estimate under fixed thresholds",
                        "Leave out the FT or MT line, so that the regression estimates its own "
                        "thresholds.");
}

CString ModelUnder(const GIVENTHRESHOLDS& given, bool sdKnown) {
  return "P(y <= category) = F((threshold - intercept - x'b) / s), F being the standard normal "
         "distribution function: a positive coefficient goes with higher categories. " +
         CString(given.marginal ? "The thresholds are the marginal ones (MT)"
                                : "The thresholds are those of the file (FT)") +
         " and count as known; the residual standard deviation s is " +
         (sdKnown ? "1, as one threshold cannot tell it." : "estimated.") +
         " Maximum likelihood; standard errors from the observed information.";
}

// One equation under thresholds that FT or MT gave.
bool RunUnderThresholds(ENGINERUN& run, const PROCEDURE& procedure, CRegressionData& data,
                        const GIVENTHRESHOLDS& given, const CString& title, FAULT& fault) {
  if (!data.GiveCategories(given.values, fault)) return false;
  const auto result =
      stats::EstimateIntervalRegression([&](const auto& work) { return data.Pass(work, fault); },
                                        data.Survey(), data.Categories().counts, given.thresholds);
  if (result.stopped) return false;
  data.WriteHeading(title);
  if (result.status != EStatus::Ok) {
    fault = FaultOf(procedure, data, result);
    return false;
  }
  const CString model = ModelUnder(given, result.sdKnown);
  run.report.Paragraph(model);
  run.report.Gap();
  WriteFit(run, result);
  WriteCategories(run, data, result.frequency);
  auto parameters = ParametersOf(data, result, given);
  WriteZTable(run.report, "Estimates", "Parameter", parameters);
  if (std::get<REGRESSION>(procedure.what).alternativeParameters) {
    run.report.Warning("AP has no effect on " + data.YName() +
                       ": with fixed thresholds the intercept is estimated anyhow.");
  }
  if (!result.sdKnown) {
    parameters.push_back({"Residual standard deviation", result.sd, result.sdError});
  }
  TellEstimates(run, {title, result.n, kLargeSample, std::move(parameters), 0, model});
  data.WarnOfCollinearity(result.smallestPivot);
  return true;
}

// The thresholds that hold for y: the last ones that a line before gave; null for none.
const GIVENTHRESHOLDS* GivenFor(const JOB& job, std::int32_t y) {
  const auto last = std::find_if(job.givenThresholds.rbegin(), job.givenThresholds.rend(),
                                 [y](const GIVENTHRESHOLDS& one) { return one.variable == y; });
  return last == job.givenThresholds.rend() ? nullptr : &*last;
}

}  // namespace

bool RunOrdinalRegression(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  const auto& regression = std::get<REGRESSION>(procedure.what);
  const bool probit = regression.method == REGRESSION::Method::Probit;
  for (const std::int32_t y : regression.y) {
    CRegressionData data(run, procedure, regression.x);
    data.Choose(y);
    if (!data.Survey(true, fault)) return false;
    const CString title = CString(probit ? "Probit" : "Logistic") + " regression of " +
                          data.YName() + " on " + NameList(run.job.data, regression.x);
    const GIVENTHRESHOLDS* const given = GivenFor(run.job, y);
    const bool done = probit && given != nullptr
                          ? RunUnderThresholds(run, procedure, data, *given, title, fault)
                          : CFreeEquation(run, regression, data).Run(title, fault);
    if (!done) return false;
    if (!probit && given != nullptr) {
      run.report.Warning("The thresholds that FT or MT gives " + data.YName() +
                         " are those of a normal variable: logistic regression estimates its own.");
    }
  }
  return true;
}
