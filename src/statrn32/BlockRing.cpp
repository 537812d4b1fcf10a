#include "statrn32/BlockRing.h"

namespace statrn32 {

RECORD_BLOCK* CBlockRing::BeginFill() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return stopped_ || filled_ - emptied_ < kBlocks; });
  if (stopped_) return nullptr;
  RECORD_BLOCK* const block = &blocks_[filled_ % kBlocks];
  block->Clear();
  return block;
}

void CBlockRing::EndFill() {
  const std::lock_guard lock(mutex_);
  ++filled_;
  changed_.notify_all();
}

void CBlockRing::Finish() {
  const std::lock_guard lock(mutex_);
  finished_ = true;
  changed_.notify_all();
}

const RECORD_BLOCK* CBlockRing::Next() {
  std::unique_lock lock(mutex_);
  if (held_) {
    ++emptied_;
    held_ = false;
    changed_.notify_all();
  }
  changed_.wait(lock, [this] { return finished_ || stopped_ || filled_ > emptied_; });
  if (stopped_ || filled_ == emptied_) return nullptr;
  held_ = true;
  return &blocks_[emptied_ % kBlocks];
}

void CBlockRing::Stop() {
  const std::lock_guard lock(mutex_);
  stopped_ = true;
  changed_.notify_all();
}

}  // namespace statrn32
