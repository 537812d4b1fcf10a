#include "engine/procedures/DataSets.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include "engine/stats/Parallel.h"

bool ForDataSets(ENGINERUN& run, std::size_t count, const DataSetWork& work, FAULT& fault) {
  constexpr int kMostAtOnce = 8;  // each pass holds some megabytes
  const int threads = stats::ThreadCount(run.threads);
  const int together = std::clamp(static_cast<int>(count), 1, std::min(threads, kMostAtOnce));
  struct END {
    bool done = false;
    FAULT fault;
  };
  std::vector<END> ends(count);
  std::atomic<std::size_t> finished{0};
  stats::ParallelFor(together, static_cast<std::int64_t>(count),
                     [&, caller = std::this_thread::get_id()](std::int64_t i) {
                       END& end = ends[static_cast<std::size_t>(i)];
                       end.done = work(static_cast<std::size_t>(i), threads / together, end.fault);
                       const auto share = static_cast<double>(++finished);
                       if (std::this_thread::get_id() == caller)
                         run.progress.Tell(share / static_cast<double>(count));
                     });
  const auto failed =
      std::find_if(ends.begin(), ends.end(), [](const END& end) { return !end.done; });
  if (failed == ends.end()) return true;
  fault = failed->fault;
  return false;
}
