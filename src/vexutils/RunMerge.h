// Merges sorted runs of records into one.
#pragma once

#include <cstdint>
#include <vector>

#include "vexutils/BlockIo.h"
#include "vexutils/SortJob.h"

// A sorted stretch of a file, in bytes.
struct RUN {
  std::int64_t offset;
  std::int64_t bytes;
};

// Merges `runs`, which lie one after the other in `sorted`, in as many passes as the budget asks
// for; equal keys keep the order of their runs. `sorted` then is the file that holds the result,
// another one than before unless there was a single run. The space of what has been merged is given
// back on the way where the file system can do that. Progress goes from `from` to kCopyComplete.
bool MergeRuns(const SortJob& job, CDescriptor& sorted, std::vector<RUN> runs, double from);
