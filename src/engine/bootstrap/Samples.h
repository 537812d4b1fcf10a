// Bootstrap samples: cases drawn with replacement, and the same estimates computed from each draw.
#pragma once

#include <functional>

#include "engine/data/CaseStore.h"
#include "engine/run/EngineRun.h"

// What the samples gave.
struct BOOTSTRAPSAMPLES {
  std::int64_t samples = 0;
  double n = 0;            // cases that were drawn from
  std::int64_t draws = 0;  // cases of a sample
  std::size_t estimates = 0;
  std::vector<double> values;        // sample after sample
  std::vector<std::uint8_t> failed;  // by sample: 1 where there are no values
  std::int64_t failures = 0;
  std::int64_t firstFailed = 0;  // counted from 1; 0 when none failed
  CString firstCause;
  std::int64_t bytes = 0;  // of the cases in memory

  double Value(std::int64_t sample, std::size_t estimate) const {
    return values[static_cast<std::size_t>(sample) * estimates + estimate];
  }
};

// Computes the values of one sample, as many as there are estimates. The sample's run gives its
// cases as a source, has one thread and a report that nobody reads. Returns false with the reason
// in `fault` when the sample has no such estimates. Called from several threads at once.
using SampleWork =
    std::function<bool(ENGINERUN& sample, std::vector<double>& values, FAULT& fault)>;

struct SAMPLEPLAN {
  const JOB& job;                   // whose data are drawn from
  std::vector<CASECOLUMN> columns;  // that the work asks for
  bool listwise = true;             // draw from the cases that are complete in them
  std::size_t estimates = 0;
};

// Draws BS samples of SF percent of the cases and lets `work` compute each. Each has a random
// stream of its own, by seed, repetition and number: the values do not depend on the threads.
// Returns false with the reason in `fault`, without a cause when the run was interrupted.
bool DrawSamples(ENGINERUN& run, const SAMPLEPLAN& plan, const SampleWork& work,
                 BOOTSTRAPSAMPLES& result, FAULT& fault);
