// Progress of a run, for whoever watches it: "progress: N" with N from 0 to 100, at most once a
// second. A run of less than a second tells nothing.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>

class CProgress {
 public:
  // Null: nothing is told.
  explicit CProgress(std::FILE* to) : to_(to) {}

  // The run consists of `count` repetitions of about the same length; the one with this number,
  // counted from 0, begins. Nobody knows yet how many stages it has.
  void BeginRepetition(std::int64_t index, std::int64_t count);
  // Likewise for one of the parts of the repetition.
  void BeginPart(int index, int count);
  // What is left of the repetition behind the part.
  void BeginLastPart();
  // What is left of the part is done in this many stages of about the same length. While nobody
  // knows how many they are, each takes a share of what is left.
  void Plan(int stages);
  void NextStage();
  // The share of the stage that is done, 0 to 1. Never goes backwards.
  void Tell(double share);
  void End();

  // Where the run is, 0 to 1.
  double Share() const { return told_; }

 private:
  struct Span {
    double begin = 0, end = 1;
  };

  static Span PieceOf(const Span& whole, double index, double count);
  void BeginStage(double begin);
  void Print(double share);

  std::FILE* to_;
  Span repetition_, part_, stage_;
  int stagesLeft_ = 0;  // with the one that is done now; 0: unknown
  double told_ = 0;
  int last_ = -1;
  std::chrono::steady_clock::time_point lastTime_ = std::chrono::steady_clock::now();
};
