#include "engine/stats/Cancel.h"

#include <atomic>

namespace stats {

namespace {

std::atomic<CancelTest> cancelTest{nullptr};

}  // namespace

void SetCancelTest(CancelTest test) {
  cancelTest = test;
}

void StopIfCancelled() {
  const CancelTest test = cancelTest;
  if (test != nullptr && test()) throw Cancelled();
}

}  // namespace stats
