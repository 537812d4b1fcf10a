#include "engine/screen/AnalysisMoments.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "engine/screen/Faults.h"
#include "engine/screen/SharedPairs.h"

namespace {

// What stands for a value of one variable in a score.
struct STANDARDISED {
  double mean = 0, deviation = 1;
  std::vector<double> values, scores;  // of the categories of an ordinal variable
  std::optional<stats::CNormalMargin> censored;

  double operator()(double value) const {
    if (censored) return std::isnan(value) ? value : censored->Expectation(censored->See(value));
    // A constant variable adds nothing, and a missing value of it still leaves the case out.
    if (values.empty()) return (value - mean) / (deviation > 0 ? deviation : 1);
    const auto at = std::lower_bound(values.begin(), values.end(), value);
    return at != values.end() && *at == value
               ? scores[static_cast<std::size_t>(at - values.begin())]
               : std::numeric_limits<double>::quiet_NaN();
  }
};

}  // namespace

bool EstimateAnalysisMoments(ENGINERUN& run, const SCREENVARIABLES& variables, MOMENTS kind,
                             ANALYSISMOMENTS& moments, FAULT& fault) {
  const std::size_t numeric = variables.numeric.size();
  std::optional<stats::CMoments> products;
  std::optional<stats::CPairTables> tables;
  // Moments about zero with ordinal variables need the deviations with divisor n, censored
  // variables their limits.
  std::optional<stats::CUnivariate> univariate;
  const bool aboutZero = kind == MOMENTS::AboutZero || kind == MOMENTS::Augmented;
  if (variables.HasCensored() || (numeric > 0 && aboutZero && !variables.ordinal.empty())) {
    univariate.emplace(static_cast<int>(numeric), variables.deletion, run.threads);
  }
  if (numeric > 0) {
    products.emplace(static_cast<int>(numeric), variables.deletion, run.threads);
  }
  if (!variables.ordinal.empty()) {
    std::vector<int> categories;
    for (const std::size_t i : variables.ordinal) {
      categories.push_back(static_cast<int>(variables.all[i].values.values.size()));
      if (categories.back() > 1) continue;
      fault = OutputFault(run,
                          "variable " + variables.all[i].name + " has " +
                              (categories.back() == 0 ? "no value" : "one category only") +
                              " among the cases that are used",
                          "Leave the variable out with SE, or change the selection of cases.");
      return false;
    }
    tables.emplace(std::move(categories), variables.deletion, run.threads);
  }
  const bool done = run.Pass(
      run.source,
      [&](const CASEBLOCK& block) {
        stats::CaseBlock cells = block.cells;
        cells.variables = static_cast<int>(numeric);
        if (products) products->Add(cells);
        if (univariate) univariate->Add(cells);
        if (tables) tables->Add(block.codes);
      },
      fault);
  if (!done) return false;
  std::optional<stats::PolychoricMatrix> polychoric;
  if (variables.ordinal.size() > 1) {
    if (!EstimatePairs(run, *tables, polychoric.emplace(), fault)) return false;
  }
  POLYSERIALRESULTS polyserial;
  if (numeric > 0 && !variables.ordinal.empty() &&
      !EstimatePolyserials(run, variables, polyserial, fault)) {
    return false;
  }
  ONEVARIABLERESULTS results;
  if (univariate) results = DescribeVariables(variables, &*univariate);
  stats::NormalPairs censored;
  return EstimateCensoredPairs(run, variables, results, tables ? &*tables : nullptr, censored,
                               fault) &&
         BuildMoments(run, variables, kind, results, products ? &*products : nullptr,
                      polychoric ? &*polychoric : nullptr, polyserial, censored, moments, fault);
}

void AddScoreVariables(ENGINERUN& run, const SCREENVARIABLES& variables,
                       const ANALYSISMOMENTS& moments, const Eigen::MatrixXd& weights,
                       const VARIABLELIST& outputs) {
  std::vector<STANDARDISED> standardised;
  CASEFUNCTION function;
  function.outputs = outputs;
  for (std::size_t i = 0; i < variables.all.size(); ++i) {
    const SCREENVARIABLE& variable = variables.all[i];
    function.inputs.push_back(variable.variable);
    const auto at = static_cast<Eigen::Index>(i);
    STANDARDISED one{moments.means(at), moments.deviations(at), {}, {}, {}};
    if (variable.IsCensored()) one.censored = moments.margins[i];
    if (variable.IsOrdinal()) {
      one.values = variable.values.values;
      one.scores = stats::ComputeNormalScores(one.values, variable.values.counts).score;
    }
    standardised.push_back(std::move(one));
  }
  function.compute = [standardised, weights](const double* inputs, double* results) {
    for (Eigen::Index k = 0; k < weights.cols(); ++k) results[k] = 0;
    for (std::size_t i = 0; i < standardised.size(); ++i) {
      const double z = standardised[i](inputs[i]);
      for (Eigen::Index k = 0; k < weights.cols(); ++k)
        results[k] += weights(static_cast<Eigen::Index>(i), k) * z;
    }
  };
  run.job.transformations.emplace_back(std::move(function));
}
