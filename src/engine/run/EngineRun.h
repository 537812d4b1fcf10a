// What the procedures of a run work with.
#pragma once

#include <vector>

#include "engine/data/CaseSource.h"
#include "engine/report/Report.h"
#include "engine/run/OutputFiles.h"
#include "engine/run/Progress.h"

struct ENGINERUN {
  JOB& job;  // of this repetition: procedures may add to it
  const CDataFile& file;
  CCaseSource& source;
  CReport& report;
  COutputFiles& files;
  CProgress& progress;
  int threads = 0;
  std::int64_t repetition = 0;  // counted from 0
  std::uint64_t seed = 0;
  // What makes the run fail although it could go on to its end.
  std::vector<FAULT> faults;

  // One pass over the cases with progress and interruption. Returns false with the reason in
  // `fault`; without a cause when the run was interrupted.
  bool Pass(CCaseSource& cases, const std::function<void(const CASEBLOCK&)>& work, FAULT& fault);
};
