#include "engine/procedures/RunProcedures.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "engine/bootstrap/MomentSamples.h"
#include "engine/bootstrap/ProcedureSamples.h"
#include "engine/procedures/CompletedData.h"
#include "engine/procedures/ProcedureReport.h"
#include "engine/screen/DataOutput.h"
#include "engine/screen/Screening.h"

namespace {

// A threshold procedure has the file of TH for itself.
bool HasThresholdProcedure(const JOB& job) {
  return std::any_of(job.procedures.begin(), job.procedures.end(), [](const PROCEDURE& procedure) {
    return std::holds_alternative<EQUALTHRESHOLDS>(procedure.what) ||
           std::holds_alternative<FIXTHRESHOLDS>(procedure.what) ||
           std::holds_alternative<MARGINALTHRESHOLDS>(procedure.what);
  });
}

bool AsksForScreening(const OUTPUTLINE& output) {
  return output.moments != MOMENTS::None || output.bivariateTables || output.printCovariances ||
         output.printVariances || !output.momentFile.empty() || !output.meansFile.empty() ||
         !output.deviationsFile.empty() || !output.covarianceFile.empty() ||
         !output.varianceFile.empty();
}

// A procedure cannot have what an SD line drops.
bool UsesDropped(const JOB& job, FAULT& fault) {
  for (const PROCEDURE& procedure : job.procedures) {
    for (const std::int32_t variable : VariablesOf(procedure)) {
      if (!job.selection.Drops(variable)) continue;
      fault = ProcedureFault(
          procedure, "variable " + ShownName(job.data, variable) + " is dropped by an SD line",
          "Take it out of one of the two lines.");
      return true;
    }
  }
  return false;
}

}  // namespace

bool ReadsThresholds(const JOB& job) {
  return std::any_of(job.procedures.begin(), job.procedures.end(), [](const PROCEDURE& procedure) {
    return std::holds_alternative<FIXTHRESHOLDS>(procedure.what);
  });
}

namespace {

bool Finish(ENGINERUN& run, FAULT& fault) {
  return AsksForScreening(run.job.output) ? ScreenData(run, fault) : SaveData(run, fault);
}

}  // namespace

bool RunProcedures(ENGINERUN& run, FAULT& fault) {
  if (UsesDropped(run.job, fault)) return false;
  const std::vector<PROCEDURE> procedures = run.job.procedures;
  // Behind them what follows all, and samples of the moments.
  const int parts =
      static_cast<int>(procedures.size()) + 1 + (AsksForMomentSamples(run.job) ? 1 : 0);
  int part = 0;
  std::optional<CCompletedData> completed;
  for (const PROCEDURE& procedure : procedures) {
    run.progress.BeginPart(part++, parts);
    const bool done = completed ? completed->RunProcedure(procedure, fault)
                                : RunWithSamples(run, procedure, fault);
    if (!done) return false;
    if (!run.job.completions.empty()) completed.emplace(run);
  }
  run.progress.BeginPart(part, parts);
  if (run.job.output.pk) {
    run.report.Warning("PK on the output line has no effect in this engine.");
  }
  if (!run.job.output.thresholdFile.empty() && !HasThresholdProcedure(run.job)) {
    run.report.Warning(
        "TH on the output line belongs to ET, MT and FT, and to a screening; no "
        "thresholds were written.");
  }
  if (!run.faults.empty()) return true;
  if (!completed) return Finish(run, fault);
  return AsksForScreening(run.job.output) ? completed->OnEach(ScreenData, true, fault)
                                          : completed->Save(fault);
}
