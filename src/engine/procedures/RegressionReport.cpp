#include "engine/procedures/RegressionReport.h"

#include <utility>

#include "engine/stats/Distributions.h"

void AddLikelihoods(CFactTable& facts, const CReport& report, const stats::RegressionFit& fit) {
  facts.Add("Log-likelihood", report.Number(fit.logLikelihood));
  facts.Add("Log-likelihood without x", report.Number(fit.logLikelihoodNull));
  facts.Add("Likelihood ratio chi-square", report.Number(fit.ratio));
  facts.Add("df", CReport::Count(fit.df));
  facts.Add("p", CReport::Probability(fit.p));
}

void AddResiduals(CFactTable& facts, const CReport& report, const stats::LocationScale& estimates,
                  bool sdKnown) {
  facts.Add("R-square (McKelvey and Zavoina)", report.Number(estimates.rSquare));
  if (sdKnown) {
    facts.Add("Residual standard deviation", "1 (fixed)");
    return;
  }
  const double error = estimates.sdError;
  facts.Add("Residual standard deviation", report.Estimate(estimates.sd, error));
  facts.Add("its standard error", report.Estimate(error, error));
}

std::vector<ESTIMATES::PARAMETER> CoefficientsOf(const CRegressionData& data,
                                                 const std::vector<double>& coefficient,
                                                 const std::vector<double>& standardError) {
  std::vector<ESTIMATES::PARAMETER> parameters;
  for (std::size_t i = 0; i < coefficient.size(); ++i) {
    parameters.push_back(
        {i == 0 ? "(Intercept)" : data.Name(i - 1), coefficient[i], standardError[i]});
  }
  return parameters;
}

void TellEstimates(ENGINERUN& run, ESTIMATES estimates) {
  if (run.estimates != nullptr) run.estimates->push_back(std::move(estimates));
}

void WriteZTable(CReport& report, const CString& title, const CString& column,
                 const std::vector<ESTIMATES::PARAMETER>& parameters) {
  TABLE table;
  table.narrowest = static_cast<std::size_t>(report.Numbers().width);
  table.columns = {
      {column, true}, {"Estimate", false}, {"Std. error", false}, {"z", false}, {"p", false}};
  for (const auto& [name, value, error] : parameters) {
    if (error == 0) {
      table.rows.push_back({name, report.Number(value), "(fixed)"});
      continue;
    }
    const double z = value / error;
    table.rows.push_back({name, report.Estimate(value, error), report.Estimate(error, error),
                          report.Number(z), CReport::Probability(stats::NormalTwoSided(z))});
  }
  report.Subsection(title);
  report.Table(table);
}
