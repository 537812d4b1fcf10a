// Progress of a run, for whoever watches it: "progress: N" with N from 0 to 100, at most once a
// second. A run of less than a second tells nothing.
#pragma once

#include <chrono>
#include <cstdio>

class CProgress {
 public:
  // Null: nothing is told.
  explicit CProgress(std::FILE* to) : to_(to) {}

  // The run consists of this many stages of about the same length; the first begins.
  void Begin(int stages);
  void NextStage();
  // The share of the stage that is done, 0 to 1. Never goes backwards.
  void Tell(double share);
  void End();

 private:
  void Print(int percent);

  std::FILE* to_;
  int stages_ = 1;
  int stage_ = 0;
  int last_ = -1;
  std::chrono::steady_clock::time_point lastTime_;
};
