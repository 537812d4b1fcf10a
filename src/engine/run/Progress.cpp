#include "engine/run/Progress.h"

#include <algorithm>

void CProgress::Begin(int stages) {
  stages_ = std::max(stages, 1);
  stage_ = 0;
  last_ = -1;
  lastTime_ = std::chrono::steady_clock::now();
}

void CProgress::NextStage() {
  stage_ = std::min(stage_ + 1, stages_ - 1);
}

void CProgress::Tell(double share) {
  constexpr double kWhole = 100;
  Print(static_cast<int>(kWhole * (stage_ + std::clamp(share, 0.0, 1.0)) / stages_));
}

void CProgress::End() {
  Print(100);
}

void CProgress::Print(int percent) {
  const auto now = std::chrono::steady_clock::now();
  if (to_ == nullptr || percent <= last_ || now - lastTime_ < std::chrono::seconds(1)) return;
  last_ = percent;
  lastTime_ = now;
  std::fprintf(to_, "progress: %d\n", percent);
  std::fflush(to_);
}
