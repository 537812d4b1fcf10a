#include "engine/procedures/CompletedData.h"

#include <algorithm>
#include <utility>

#include "engine/procedures/DataSets.h"
#include "engine/procedures/ProcedureReport.h"
#include "engine/procedures/ProcedureTable.h"
#include "engine/screen/DataOutput.h"
#include "engine/stats/Pooling.h"

namespace {

// An equation's estimates of all data sets, those of one parameter side by side.
struct POOLEDEQUATION {
  CString title, method;
  double fewest = 0, most = 0;  // cases
  double df = kLargeSample;
  std::vector<CString> names;
  std::vector<stats::PooledEstimate> parameters;
  std::vector<bool> fixed;
};

// False when the equations do not have the same parameters.
bool Pool(const std::vector<std::vector<ESTIMATES>>& all, std::size_t equation,
          POOLEDEQUATION& pooled) {
  const ESTIMATES& first = all.front()[equation];
  pooled.title = first.title;
  pooled.method = first.method;
  pooled.fewest = pooled.most = first.n;
  for (const auto& one : all) {
    const ESTIMATES& estimates = one[equation];
    pooled.fewest = std::min(pooled.fewest, estimates.n);
    pooled.most = std::max(pooled.most, estimates.n);
    pooled.df = std::min(pooled.df, estimates.df);
    const bool same = std::equal(first.parameters.begin(), first.parameters.end(),
                                 estimates.parameters.begin(), estimates.parameters.end(),
                                 [](const auto& a, const auto& b) { return a.name == b.name; });
    if (!same) return false;
  }
  for (std::size_t k = 0; k < first.parameters.size(); ++k) {
    std::vector<double> values, errors;
    for (const auto& one : all) {
      values.push_back(one[equation].parameters[k].value);
      errors.push_back(one[equation].parameters[k].error);
    }
    pooled.names.push_back(first.parameters[k].name);
    pooled.fixed.push_back(first.parameters[k].error == 0);
    pooled.parameters.push_back(stats::PoolEstimates(values, errors, pooled.df));
  }
  return true;
}

// Two digits of a variance at least; more decimals than the others where these are fixed, since it
// is the square of a standard error.
CString VarianceText(const CReport& report, double variance) {
  constexpr int kMore = 3;
  return report.Numbers().fixed ? CReport::Number(variance, report.Numbers().decimals + kMore)
                                : report.Estimate(variance, variance);
}

void WriteEstimates(CReport& report, const POOLEDEQUATION& equation) {
  TABLE estimates, variances;
  estimates.narrowest = variances.narrowest = static_cast<std::size_t>(report.Numbers().width);
  estimates.columns = {{"Parameter", true}, {"Estimate", false}, {"Std. error", false},
                       {"t", false},        {"df", false},       {"p", false}};
  variances.columns = {{"Parameter", true},    {"95% from", false}, {"to", false},
                       {"Within", false},      {"Between", false},  {"Increase", false},
                       {"Missing inf.", false}};
  for (std::size_t k = 0; k < equation.names.size(); ++k) {
    const stats::PooledEstimate& one = equation.parameters[k];
    if (equation.fixed[k]) {
      estimates.rows.push_back({equation.names[k], report.Number(one.value), "(fixed)"});
      continue;
    }
    const auto estimate = [&](double value) { return report.Estimate(value, one.error); };
    estimates.rows.push_back({equation.names[k], estimate(one.value), estimate(one.error),
                              report.Number(one.t), CReport::Number(one.df, 1),
                              CReport::Probability(one.p)});
    variances.rows.push_back({equation.names[k], estimate(one.low), estimate(one.high),
                              VarianceText(report, one.within), VarianceText(report, one.between),
                              report.Number(one.increase), report.Number(one.missingInformation)});
  }
  report.Subsection("Pooled estimates");
  report.Table(estimates);
  report.Subsection("Confidence intervals; variance within and between the data sets");
  report.Table(variances);
}

}  // namespace

CCompletedData::CCompletedData(ENGINERUN& run) : run_(run) {
  const std::vector<CASEFUNCTION> completions = std::exchange(run.job.completions, {});
  jobs_.assign(completions.size(), run.job);
  for (std::size_t i = 0; i < jobs_.size(); ++i)
    jobs_[i].transformations.emplace_back(completions[i]);
}

ENGINERUN CCompletedData::RunOn(std::size_t dataSet, CCaseSource& source, CReport& report,
                                CProgress& progress, int threads) {
  ENGINERUN one{jobs_[dataSet], run_.file, source,          report,    run_.files,
                progress,       threads,   run_.repetition, run_.seed, {}};
  one.ranks = run_.ranks;
  one.dataSet = dataSet;
  return one;
}

void CCompletedData::NameDataSet(std::size_t dataSet, FAULT& fault) {
  if (fault) fault.cause += " (completed data set " + std::to_string(dataSet + 1) + ")";
}

bool CCompletedData::Save(FAULT& fault) {
  const bool done = ForDataSets(
      run_, jobs_.size(),
      [this](std::size_t i, int threads, FAULT& why) {
        CCaseSource source(run_.file, jobs_[i], run_.seed, run_.repetition, threads);
        CReport unseen;
        CProgress untold(nullptr);
        ENGINERUN one = RunOn(i, source, unseen, untold, threads);
        const bool saved = SaveData(one, why);
        if (!saved) NameDataSet(i, why);
        return saved;
      },
      fault);
  run_.progress.NextStage();
  return done;
}

bool CCompletedData::OnEach(const std::function<bool(ENGINERUN&, FAULT&)>& work, bool headings,
                            FAULT& fault) {
  for (std::size_t i = 0; i < jobs_.size(); ++i) {
    if (headings) {
      run_.report.Section("Completed data set " + std::to_string(i + 1) + " of " +
                          std::to_string(jobs_.size()));
    }
    CCaseSource source(run_.file, jobs_[i], run_.seed, run_.repetition, run_.threads);
    ENGINERUN one = RunOn(i, source, run_.report, run_.progress, run_.threads);
    const bool done = work(one, fault);
    run_.faults.insert(run_.faults.end(), one.faults.begin(), one.faults.end());
    if (!done) {
      NameDataSet(i, fault);
      return false;
    }
  }
  return true;
}

bool CCompletedData::RunProcedure(const PROCEDURE& procedure, FAULT& fault) {
  if (std::holds_alternative<MULTIPLEIMPUTATION>(procedure.what) &&
      std::get<MULTIPLEIMPUTATION>(procedure.what).mcmc) {
    fault = ProcedureFault(procedure, "an MC line before this one has completed the data already",
                           "Name all variables on one MC line.");
    return false;
  }
  if (std::holds_alternative<REGRESSION>(procedure.what)) return PoolRegressions(procedure, fault);
  return OnEach(
      [&procedure](ENGINERUN& one, FAULT& why) { return RunnerOf(procedure)(one, procedure, why); },
      true, fault);
}

bool CCompletedData::PoolRegressions(const PROCEDURE& procedure, FAULT& fault) {
  std::vector<std::vector<ESTIMATES>> all;
  std::vector<CString> warnings;
  const bool done = OnEach(
      [&](ENGINERUN& one, FAULT& why) {
        CReport unseen;
        ENGINERUN quiet{one.job,      one.file,    one.source,     unseen,   one.files,
                        one.progress, one.threads, one.repetition, one.seed, {}};
        quiet.estimates = &all.emplace_back();
        quiet.ranks = one.ranks;
        quiet.dataSet = one.dataSet;
        const bool estimated = RunnerOf(procedure)(quiet, procedure, why);
        for (const CString& warning : unseen.Warnings()) {
          if (std::find(warnings.begin(), warnings.end(), warning) == warnings.end())
            warnings.push_back(warning);
        }
        return estimated;
      },
      false, fault);
  if (!done) return false;
  for (std::size_t equation = 0; equation < all.front().size(); ++equation) {
    POOLEDEQUATION pooled;
    if (!Pool(all, equation, pooled)) {
      fault = ProcedureFault(procedure,
                             "the categories of y are not the same in all completed data sets",
                             "Join rare categories with RC.");
      return false;
    }
    run_.report.Section(pooled.title);
    run_.report.Paragraph(pooled.method);
    run_.report.Gap();
    run_.report.Paragraph(
        "Pooled over the completed data sets by Rubin's rules: the variance of an estimate is the "
        "mean of its squared standard errors (within) and (1 + 1/m) times its variance between "
        "the data sets; t and the intervals have the degrees of freedom that these leave.");
    run_.report.Gap();
    CFactTable facts;
    facts.Add("Completed data sets", std::to_string(jobs_.size()));
    facts.Add("Cases used",
              CReport::Count(pooled.fewest) +
                  (pooled.most > pooled.fewest ? " to " + CReport::Count(pooled.most) : CString()));
    facts.Write(run_.report);
    WriteEstimates(run_.report, pooled);
  }
  for (const CString& warning : warnings) run_.report.Warning(warning);
  return true;
}
