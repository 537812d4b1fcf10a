#include "engine/stats/Parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "engine/stats/Cancel.h"

namespace stats {

int ThreadCount(int wanted) {
  if (wanted > 0) return wanted;
  return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

void ParallelFor(int threads, std::int64_t count, const std::function<void(std::int64_t)>& work) {
  std::atomic<std::int64_t> next{0};
  std::exception_ptr error;
  std::mutex errorLock;
  const auto run = [&] {
    try {
      for (std::int64_t i = next++; i < count; i = next++) {
        StopIfCancelled();
        work(i);
      }
    } catch (...) {
      next = count;
      const std::lock_guard<std::mutex> hold(errorLock);
      if (!error) error = std::current_exception();
    }
  };
  std::vector<std::thread> helpers;
  const std::int64_t wanted = std::min<std::int64_t>(ThreadCount(threads), count) - 1;
  helpers.reserve(static_cast<std::size_t>(std::max<std::int64_t>(wanted, 0)));
  try {
    for (std::int64_t i = 0; i < wanted; ++i) helpers.emplace_back(run);
  } catch (const std::system_error&) {  // the threads that are there do the rest
  }
  run();
  for (std::thread& helper : helpers) helper.join();
  if (error) std::rethrow_exception(error);
}

}  // namespace stats
