// What follows an imputation that completed the data several times over: procedures on all
// completed data sets, their estimates pooled.
#pragma once

#include "engine/run/EngineRun.h"

class CCompletedData {
 public:
  // Takes the completions of the run's job; from here on each data set has a job of its own.
  explicit CCompletedData(ENGINERUN& run);

  // Regressions are pooled by Rubin's rules; of other procedures the output of each data set
  // follows. False with the reason in `fault`, which names the data set.
  bool RunProcedure(const PROCEDURE& procedure, FAULT& fault);

  // Writes each data set to its file (DataOutput.h), several at the same time.
  bool Save(FAULT& fault);

  // Calls `work` with a run on each data set; where a heading is wanted, it tells which one.
  bool OnEach(const std::function<bool(ENGINERUN& run, FAULT& fault)>& work, bool headings,
              FAULT& fault);

 private:
  ENGINERUN RunOn(std::size_t dataSet, CCaseSource& source, CReport& report, CProgress& progress,
                  int threads);
  static void NameDataSet(std::size_t dataSet, FAULT& fault);
  bool PoolRegressions(const PROCEDURE& procedure, FAULT& fault);

  ENGINERUN& run_;
  std::vector<JOB> jobs_;
};
