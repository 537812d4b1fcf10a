#include "vexutils/TickCount.h"

#include <chrono>
#include <ctime>

std::int64_t GetTickCount() {
#ifdef CLOCK_MONOTONIC_COARSE
  timespec now{};
  if (clock_gettime(CLOCK_MONOTONIC_COARSE, &now) == 0) {
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
  }
#endif
  using std::chrono::duration_cast;
  return duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}
