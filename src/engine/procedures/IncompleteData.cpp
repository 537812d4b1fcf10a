#include "engine/procedures/IncompleteData.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "engine/procedures/IncompleteEstimates.h"
#include "engine/procedures/IncompleteSample.h"
#include "engine/run/Estimates.h"

namespace {

void WarnOfOrdinal(ENGINERUN& run, const MULTIPLEIMPUTATION& em) {
  VARIABLELIST ordinal;
  for (const std::int32_t variable : em.variables) {
    if (run.job.data.variable[static_cast<std::size_t>(variable)].type == kOrdinal)
      ordinal.push_back(variable);
  }
  if (ordinal.empty()) return;
  run.report.Warning("EM takes the values as those of normal variables, those of the ordinal " +
                     NameList(run.job.data, ordinal) +
                     " too. MC imputes ordinal variables by their categories.");
}

// Expected values are none of the categories: an ordinal variable that gets some is continuous for
// what follows, and in the saved data.
void MakeContinuous(ENGINERUN& run, const CIncompleteSample& sample, std::int64_t notFilled) {
  VARIABLELIST changed;
  for (const INCOMPLETEVARIABLE& one : sample.Variables()) {
    VARSTRUCT& record = run.job.data.variable[static_cast<std::size_t>(one.variable)];
    if (record.type != kOrdinal || one.missing <= notFilled) continue;
    record.type = kContinuous;
    record.categories = 0;
    changed.push_back(one.variable);
  }
  if (changed.empty()) return;
  run.report.Gap();
  run.report.Paragraph("Expected values are no categories: " + NameList(run.job.data, changed) +
                       (changed.size() > 1 ? " count" : " counts") +
                       " as continuous from here on.");
}

// From here on the run has the expected values in place of the missing ones.
void Complete(ENGINERUN& run, const MULTIPLEIMPUTATION& em, const CIncompleteSample& sample) {
  using AllMissing = MULTIPLEIMPUTATION::AllMissing;
  const auto means = std::make_shared<stats::CConditionalMeans>(sample.Patterns(), sample.Result());
  const bool fillAll = em.allMissing == AllMissing::Mean;
  CASEFUNCTION function;
  function.inputs = function.outputs = em.variables;
  function.compute = [means, fillAll, p = em.variables.size()](const double* in, double* out) {
    const bool none = std::all_of(in, in + p, [](double x) { return std::isnan(x); });
    if (none && !fillAll) {
      std::fill(out, out + p, std::numeric_limits<double>::quiet_NaN());
    } else {
      means->Fill(in, out);
    }
  };
  run.job.transformations.emplace_back(std::move(function));
  if (em.allMissing == AllMissing::Delete) run.job.emptyIn = em.variables;
  MakeContinuous(run, sample, fillAll ? 0 : sample.Patterns().AllMissing());
  run.report.Gap();
  if (run.files.Find("RA") == nullptr) {
    run.report.Warning("The completed data are not saved: add RA=file to the output line.");
    return;
  }
  run.report.Paragraph(
      CString("In the saved data missing values are replaced by their expected values given the "
              "observed ones. Cases with all values missing are ") +
      (em.allMissing == AllMissing::Delete ? "left out."
       : fillAll                           ? "kept with the means."
                                           : "left as they are."));
}

// What bootstrapping samples: means, standard deviations, correlations.
void NoteEstimates(ENGINERUN& run, const CIncompleteSample& sample) {
  const auto& variables = sample.Variables();
  const stats::IncompleteNormalResult& result = sample.Result();
  const Eigen::VectorXd deviations = result.covariance.diagonal().cwiseSqrt();
  ESTIMATES means = MakeEstimates("Means"), spread = MakeEstimates("Standard deviations");
  ESTIMATES correlations = MakeEstimates("Correlations");
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const auto row = static_cast<Eigen::Index>(i);
    AddEstimate(means, variables[i].name, result.mean(row));
    AddEstimate(spread, variables[i].name, deviations(row));
    for (std::size_t j = 0; j < i; ++j) {
      const auto column = static_cast<Eigen::Index>(j);
      AddEstimate(correlations, variables[i].name + "," + variables[j].name,
                  result.covariance(row, column) / (deviations(row) * deviations(column)));
    }
  }
  run.estimates->insert(run.estimates->end(),
                        {std::move(means), std::move(spread), std::move(correlations)});
}

}  // namespace

bool RunExpectationMaximisation(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  const auto& em = std::get<MULTIPLEIMPUTATION>(procedure.what);
  CIncompleteSample sample(run, procedure);
  if (!sample.Read(false, fault)) return false;
  sample.WriteCases();
  run.report.Section("EM: an incomplete multivariate normal sample");
  WarnOfOrdinal(run, em);
  if (!sample.Estimate(fault)) return false;
  if (run.sampling != nullptr) {
    NoteEstimates(run, sample);
    if (run.sampling->isSample) return true;
  }
  sample.WriteHistory();
  WriteIncompleteEstimates(run, sample);
  Complete(run, em, sample);
  return true;
}
