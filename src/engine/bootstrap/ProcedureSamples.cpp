#include "engine/bootstrap/ProcedureSamples.h"

#include <utility>

#include "engine/bootstrap/BootstrapReport.h"
#include "engine/run/Estimates.h"

namespace {

// Samples are taken from the data as the procedure found them. A variable that was taken as
// continuous for its many values stays so, however few of them a sample has.
JOB JobOfSamples(JOB job, const std::vector<CASECOLUMN>& columns) {
  for (const CASECOLUMN& column : columns) {
    VARSTRUCT& variable = job.data.variable[static_cast<std::size_t>(column.variable)];
    if (column.values.empty() && variable.type == kOrdinal) variable.type = kContinuous;
  }
  return job;
}

// Does the procedure leave out what is incomplete in any of its variables?
bool IsListwise(const ENGINERUN& run, const PROCEDURE& procedure) {
  return run.job.data.deletion != kPairwise && run.source.IsListwise() &&
         !std::holds_alternative<MARGINALTHRESHOLDS>(procedure.what);
}

// What the procedure found on all cases.
struct WHOLE {
  std::vector<ESTIMATES> estimates;
  SAMPLING sampling;
};

bool SampleProcedure(ENGINERUN& sample, const PROCEDURE& procedure, const WHOLE& whole,
                     std::vector<double>& values, FAULT& fault) {
  std::vector<ESTIMATES> own;
  SAMPLING sampling{true, whole.sampling.settled};
  sample.estimates = &own;
  sample.sampling = &sampling;
  if (!RunnerOf(procedure)(sample, procedure, fault)) return false;
  if (!sample.faults.empty()) {
    fault = sample.faults.front();
    return false;
  }
  LeaveOutFactors(whole.estimates, own);
  if (!HaveSameNames(own, whole.estimates)) {
    fault.cause = "it lacks a category, and so has other parameters";
    return false;
  }
  AlignLoadings(whole.estimates, own);
  values = ValuesOf(own);
  return true;
}

}  // namespace

bool RunWithSamples(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  if (run.job.output.samples == 0) return RunnerOf(procedure)(run, procedure, fault);
  const JOB before = run.job;
  WHOLE whole;
  std::vector<ESTIMATES>* const collected = std::exchange(run.estimates, &whole.estimates);
  run.sampling = &whole.sampling;
  run.source.ForgetUse();
  const bool ran = RunnerOf(procedure)(run, procedure, fault);
  run.estimates = collected;
  run.sampling = nullptr;
  if (collected != nullptr) {
    collected->insert(collected->end(), whole.estimates.begin(), whole.estimates.end());
  }
  if (!ran || !run.faults.empty()) return ran;
  if (whole.estimates.empty()) {
    run.report.Warning(ProcedureName(procedure) + " has no estimates that BS would sample.");
    return true;
  }
  const std::vector<CASECOLUMN> columns = run.source.Used();
  const JOB job = JobOfSamples(before, columns);
  const SAMPLEPLAN plan{job, columns, IsListwise(run, procedure), ValuesOf(whole.estimates).size()};
  BOOTSTRAPSAMPLES samples;
  const bool done = DrawSamples(
      run, plan,
      [&](ENGINERUN& sample, std::vector<double>& values, FAULT& problem) {
        return SampleProcedure(sample, procedure, whole, values, problem);
      },
      samples, fault);
  if (!done) return false;
  WriteBootstrapHeading(run, "Bootstrap of " + ProcedureName(procedure), samples);
  WriteBootstrapTables(run, whole.estimates, samples);
  return true;
}
