#include "engine/run/Progress.h"

#include <algorithm>

CProgress::Span CProgress::PieceOf(const Span& whole, double index, double count) {
  const double length = (whole.end - whole.begin) / std::max(count, 1.0);
  return {whole.begin + index * length, whole.begin + (index + 1) * length};
}

void CProgress::BeginRepetition(std::int64_t index, std::int64_t count) {
  repetition_ = PieceOf({0, 1}, static_cast<double>(index), static_cast<double>(count));
  BeginPart(0, 1);
}

void CProgress::BeginPart(int index, int count) {
  part_ = PieceOf(repetition_, index, count);
  stagesLeft_ = 0;
  BeginStage(part_.begin);
}

void CProgress::BeginLastPart() {
  part_ = {part_.end, repetition_.end};
  stagesLeft_ = 0;
  BeginStage(part_.begin);
}

void CProgress::Plan(int stages) {
  stagesLeft_ = stages;
  BeginStage(stage_.begin);
}

void CProgress::BeginStage(double begin) {
  constexpr int kPieces = 4;
  const int pieces = stagesLeft_ > 0 ? stagesLeft_ : kPieces;
  stage_ = PieceOf({begin, part_.end}, 0, pieces);
}

void CProgress::NextStage() {
  Tell(1);
  if (stagesLeft_ > 0) --stagesLeft_;
  BeginStage(stage_.end);
}

void CProgress::Tell(double share) {
  Print(stage_.begin + (stage_.end - stage_.begin) * std::clamp(share, 0.0, 1.0));
}

void CProgress::End() {
  Print(1);
}

void CProgress::Print(double share) {
  constexpr double kWhole = 100;
  told_ = std::max(told_, share);
  const int percent = static_cast<int>(kWhole * told_);
  const auto now = std::chrono::steady_clock::now();
  if (to_ == nullptr || percent <= last_ || now - lastTime_ < std::chrono::seconds(1)) return;
  last_ = percent;
  lastTime_ = now;
  std::fprintf(to_, "progress: %d\n", percent);
  std::fflush(to_);
}
