#include "engine/procedures/RunProcedures.h"

#include <algorithm>

#include "engine/bootstrap/ProcedureSamples.h"
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

}  // namespace

bool ReadsThresholds(const JOB& job) {
  return std::any_of(job.procedures.begin(), job.procedures.end(), [](const PROCEDURE& procedure) {
    return std::holds_alternative<FIXTHRESHOLDS>(procedure.what);
  });
}

bool RunProcedures(ENGINERUN& run, FAULT& fault) {
  const std::vector<PROCEDURE> procedures = run.job.procedures;
  constexpr int kStagesEach = 8;
  run.progress.Begin(kStagesEach * static_cast<int>(procedures.size()));
  for (const PROCEDURE& procedure : procedures) {
    if (!RunWithSamples(run, procedure, fault)) return false;
  }
  if (run.job.output.pk) {
    run.report.Warning("PK on the output line has no effect in this engine.");
  }
  if (!run.job.output.thresholdFile.empty() && !HasThresholdProcedure(run.job)) {
    run.report.Warning(
        "TH on the output line belongs to ET, MT and FT, and to a screening; no "
        "thresholds were written.");
  }
  if (!run.faults.empty()) return true;
  return AsksForScreening(run.job.output) ? ScreenData(run, fault) : SaveData(run, fault);
}
