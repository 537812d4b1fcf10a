#include "engine/run/Interrupt.h"

#include <atomic>
#include <csignal>

namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may set nothing else");

void OnSignal(int /*signal*/) {
  interrupted = true;
}

}  // namespace

void WatchForInterrupts() {
  struct sigaction action {};
  action.sa_handler = OnSignal;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool IsInterrupted() {
  return interrupted;
}

void SetInterrupted(bool value) {
  interrupted = value;
}
