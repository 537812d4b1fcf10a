#include "engine/procedures/Regression.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "engine/procedures/RegressionReport.h"
#include "engine/stats/LeastSquares.h"

namespace {

using stats::EStatus;

void WriteCoefficients(ENGINERUN& run, const CRegressionData& data,
                       const stats::LeastSquaresResult& result, bool oneStage) {
  CReport& report = run.report;
  TABLE table;
  table.narrowest = static_cast<std::size_t>(report.Numbers().width);
  table.columns = {
      {"Variable", true}, {"Estimate", false}, {"Std. error", false}, {"t", false}, {"p", false}};
  if (oneStage) {
    table.columns.push_back({"Standardised", false});
    table.columns.push_back({"VIF", false});
  }
  for (std::size_t i = 0; i < result.coefficient.size(); ++i) {
    const double error = result.standardError[i];
    std::vector<CString> row = {i == 0 ? "(Intercept)" : data.Name(i - 1),
                                report.Estimate(result.coefficient[i], error),
                                report.Estimate(error, error), report.Number(result.t[i]),
                                CReport::Probability(result.p[i])};
    if (oneStage && i > 0) {
      row.push_back(report.Number(result.standardised[i - 1]));
      row.push_back(CReport::Number(result.varianceInflation[i - 1], 2));
    }
    table.rows.push_back(std::move(row));
  }
  report.Subsection("Coefficients");
  report.Table(table);
}

ESTIMATES EstimatesOf(const CRegressionData& data, const CString& title,
                      const stats::LeastSquaresResult& result, CString method) {
  return {title,      result.n,
          result.df2, CoefficientsOf(data, result.coefficient, result.standardError),
          0,          std::move(method)};
}

void WriteFit(ENGINERUN& run, const stats::LeastSquaresResult& result) {
  CReport& report = run.report;
  CFactTable facts;
  facts.Add("n", CReport::Count(result.n));
  facts.Add("R-square", report.Number(result.rSquare));
  facts.Add("Adjusted R-square", report.Number(result.adjustedRSquare));
  facts.Add("Residual standard deviation", report.Estimate(result.residualSd, result.residualSd));
  facts.Add("Residual degrees of freedom", CReport::Count(result.df2));
  facts.Write(report);
}

void WriteVariance(ENGINERUN& run, const stats::LeastSquaresResult& result) {
  CReport& report = run.report;
  TABLE table;
  table.columns = {{"Source", true}, {"Sum of squares", false},
                   {"df", false},    {"Mean square", false},
                   {"F", false},     {"p", false}};
  const auto row = [&report](const char* name, double squares, double df) {
    return std::vector<CString>{name, report.Estimate(squares, squares), CReport::Count(df),
                                report.Estimate(squares / df, squares / df)};
  };
  table.rows.push_back(row("Regression", result.regressionSquares, result.df1));
  table.rows.back().push_back(report.Number(result.f));
  table.rows.back().push_back(CReport::Probability(result.pF));
  table.rows.push_back(row("Residual", result.residualSquares, result.df2));
  table.rows.push_back({"Total", report.Estimate(result.totalSquares, result.totalSquares),
                        CReport::Count(result.df1 + result.df2)});
  report.Subsection("Analysis of variance");
  report.Table(table);
}

void WarnOfPerfectFit(ENGINERUN& run, const CRegressionData& data,
                      const stats::LeastSquaresResult& result) {
  constexpr double kRounding = 1e-24;
  if (result.residualSquares > kRounding * result.totalSquares) return;
  run.report.Warning("The x variables predict " + data.YName() +
                     " up to rounding: standard errors, t, F and p mean nothing here.");
}

// x first; then the instruments that are none of them. The places of the instruments go to `z`.
VARIABLELIST ColumnsOf(const REGRESSION& regression, std::vector<int>& z) {
  VARIABLELIST columns = regression.x;
  for (const std::int32_t instrument : regression.instruments) {
    auto at = std::find(columns.begin(), columns.end(), instrument);
    if (at == columns.end()) at = columns.insert(at, instrument);
    z.push_back(static_cast<int>(at - columns.begin()));
  }
  return columns;
}

std::vector<int> FirstPlaces(std::size_t count) {
  std::vector<int> places(count);
  std::iota(places.begin(), places.end(), 0);
  return places;
}

void WriteFirstStages(ENGINERUN& run, const CRegressionData& data,
                      const stats::TwoStageResult& result) {
  CReport& report = run.report;
  if (!result.firstStages.empty()) {
    TABLE table;
    table.columns = {{"Variable", true}, {"Partial R-square", false},
                     {"F", false},       {"df", false},
                     {"df", false},      {"p", false}};
    for (const auto& stage : result.firstStages) {
      table.rows.push_back({data.Name(static_cast<std::size_t>(stage.x)),
                            report.Number(stage.partialRSquare), report.Number(stage.f),
                            CReport::Count(stage.df1), CReport::Count(stage.df2),
                            CReport::Probability(stage.p)});
    }
    report.Subsection(
        "First stage: what the instruments add to the prediction of each x that is "
        "none of them");
    report.Table(table);
  }
  for (const auto& stage : result.firstStages) {
    constexpr double kWeak = 10;
    if (stage.f >= kWeak) continue;
    report.Warning("The instruments are weak for " + data.Name(static_cast<std::size_t>(stage.x)) +
                   " in the equation of " + data.YName() + ": F of the first stage is " +
                   report.Number(stage.f) + ", below 10.");
  }
  report.Gap();
  if (result.dfSargan > 0) {
    report.Paragraph("Overidentifying restrictions (Sargan): chi-square = " +
                     report.Number(result.sargan) + ", df = " + CReport::Count(result.dfSargan) +
                     ", p = " + CReport::Probability(result.pSargan));
  } else {
    report.Paragraph("The equation is just identified: there is no test of the instruments.");
  }
}

bool CheckInstruments(const PROCEDURE& procedure, const REGRESSION& regression,
                      const CRegressionData& data, FAULT& fault) {
  const auto& z = regression.instruments;
  if (std::find(z.begin(), z.end(), data.Y()) != z.end() ||
      std::find(regression.x.begin(), regression.x.end(), data.Y()) != regression.x.end()) {
    fault = ProcedureFault(procedure,
                           "the y variable " + data.YName() +
                               " stands among the x variables or instruments of its own equation",
                           "Take it out of the lists behind ON and WITH.");
  } else if (z.size() < regression.x.size()) {
    fault = ProcedureFault(procedure,
                           "the equation of " + data.YName() + " is not identified: it has " +
                               CountText(regression.x.size(), "x variable") + " and only " +
                               CountText(z.size(), "instrument"),
                           "Name at least as many instruments behind WITH as x variables; an x "
                           "that is exogenous is named there too.");
  }
  return !fault;
}

}  // namespace

bool RunRegression(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  const auto& regression = std::get<REGRESSION>(procedure.what);
  for (const std::int32_t y : regression.y) {
    CRegressionData data(run, procedure, regression.x);
    const auto k = static_cast<int>(regression.x.size());
    stats::CCrossProducts sums(k + 1);
    data.Choose(y);
    if (!data.SumProducts(sums, fault)) return false;
    const CString title =
        "Regression of " + data.YName() + " on " + NameList(run.job.data, regression.x);
    data.WriteHeading(title);
    const auto result = stats::EstimateLeastSquares(sums, k, FirstPlaces(regression.x.size()));
    if (result.status != EStatus::Ok) {
      fault = data.FaultOf(result.status, result.variable);
      return false;
    }
    WriteFit(run, result);
    WriteCoefficients(run, data, result, true);
    WriteVariance(run, result);
    TellEstimates(run, EstimatesOf(data, title, result, "Least squares."));
    WarnOfPerfectFit(run, data, result);
    data.WarnOfCollinearity(result.smallestPivot);
  }
  return true;
}

bool RunTwoStageRegression(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  const auto& regression = std::get<REGRESSION>(procedure.what);
  std::vector<int> z;
  const VARIABLELIST columns = ColumnsOf(regression, z);
  for (const std::int32_t y : regression.y) {
    CRegressionData data(run, procedure, columns);
    const auto k = static_cast<int>(columns.size());
    stats::CCrossProducts sums(k + 1);
    data.Choose(y);
    if (!CheckInstruments(procedure, regression, data, fault) || !data.SumProducts(sums, fault)) {
      return false;
    }
    const CString title =
        "Two-stage least squares: " + data.YName() + " on " + NameList(run.job.data, regression.x);
    data.WriteHeading(title);
    const CString instruments = "Instruments: " + NameList(run.job.data, regression.instruments);
    run.report.Paragraph(instruments);
    run.report.Gap();
    const auto result = stats::EstimateTwoStage(sums, k, FirstPlaces(regression.x.size()), z);
    if (result.status == EStatus::NotPositiveDefinite && result.variable < 0) {
      fault = ProcedureFault(procedure,
                             "the equation of " + data.YName() +
                                 " is not identified: the instruments are collinear, or do not "
                                 "tell the x variables apart",
                             "Leave out instruments that are sums of others or constant, or name "
                             "others that are related to the x variables.");
      return false;
    }
    if (result.status != EStatus::Ok) {
      fault = data.FaultOf(result.status, result.variable);
      return false;
    }
    WriteFit(run, result);
    WriteCoefficients(run, data, result, false);
    run.report.Gap();
    run.report.Paragraph(
        "R-square is 1 - residual / total sum of squares and may be negative; the residual "
        "variance has the divisor n - number of coefficients.");
    WriteFirstStages(run, data, result);
    TellEstimates(run, EstimatesOf(data, title, result, instruments + '.'));
    WarnOfPerfectFit(run, data, result);
    data.WarnOfCollinearity(result.smallestPivot);
  }
  return true;
}
