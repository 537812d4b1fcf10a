#include "engine/procedures/CensoredRegression.h"

#include <algorithm>
#include <cmath>

#include "engine/procedures/RegressionReport.h"
#include "engine/stats/CensoredRegression.h"

namespace {

using stats::EStatus;

void WriteFit(ENGINERUN& run, const stats::CensoredRegressionResult& result) {
  CReport& report = run.report;
  const auto side = [&](const char* name, double limit, double cases) {
    return CString(name) + (std::isfinite(limit) ? " (at " + report.Number(limit) + ")" : "") +
           (cases == 0 && !std::isfinite(limit) ? ": not censored" : "");
  };
  CFactTable facts;
  facts.Add("n", CReport::Count(result.n));
  facts.Add(side("Censored below", result.limits.lower, result.below),
            CReport::Count(result.below));
  facts.Add(side("Censored above", result.limits.upper, result.above),
            CReport::Count(result.above));
  AddLikelihoods(facts, report, result);
  AddResiduals(facts, report, result, false);
  facts.Write(report);
}

// What the cases between the limits lack.
FAULT FaultOf(const PROCEDURE& procedure, const CRegressionData& data,
              const stats::CensoredRegressionResult& result) {
  const bool few = result.status == EStatus::TooFewCases;
  if ((!few && result.status != EStatus::Constant) || result.variable >= 0 ||
      result.below + result.above == 0) {
    return data.FaultOf(result.status, result.variable);
  }
  return ProcedureFault(
      procedure,
      data.YName() + " has only " + CountText(result.n - result.below - result.above, "case") +
          " between its limits, the smallest and the largest value" +
          (few ? ": no more than there are coefficients" : ", and these are all equal"),
      few ? "Leave out x variables, use more cases, or take the variable as ordinal (OR, PR)."
          : "Take the variable as ordinal (a line OR), and use PR or LO.");
}

}  // namespace

bool RunCensoredRegression(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  const auto& regression = std::get<REGRESSION>(procedure.what);
  for (const std::int32_t y : regression.y) {
    CRegressionData data(run, procedure, regression.x);
    const std::int32_t type = run.job.data.variable[static_cast<std::size_t>(y)].type;
    if (type < kCensoredAbove || type > kCensoredBoth) {
      fault = ProcedureFault(procedure,
                             "the y variable " + ShownName(run.job.data, y) + " is " +
                                 TypeText(type) + ", not censored",
                             "Say how it is censored by a line CA (above), CB (below) or CE (both) "
                             "before this one, or use RG, PR or LO.");
      return false;
    }
    data.Choose(y);
    if (!data.Survey(false, fault)) return false;
    const auto result = stats::EstimateCensoredRegression(
        [&](const auto& work) { return data.Pass(work, fault); }, data.Survey(),
        type != kCensoredAbove, type != kCensoredBelow);
    if (result.stopped) return false;
    const CString title =
        "Censored regression of " + data.YName() + " on " + NameList(run.job.data, regression.x);
    data.WriteHeading(title);
    if (result.status != EStatus::Ok) {
      fault = FaultOf(procedure, data, result);
      return false;
    }
    const CString method =
        "Maximum likelihood under normal residuals; the limits are the smallest and the largest "
        "value of y. Standard errors from the observed information.";
    run.report.Paragraph(method);
    run.report.Gap();
    WriteFit(run, result);
    auto parameters = CoefficientsOf(data, result.coefficient, result.standardError);
    WriteZTable(run.report, "Coefficients", "Variable", parameters);
    TellEstimates(run, {title, result.n, kLargeSample, std::move(parameters), 0, method});
    data.WarnOfCollinearity(result.smallestPivot);
  }
  return true;
}
