// Hands blocks of records from the thread that parses to the thread that reads.
#pragma once

#include <array>
#include <condition_variable>
#include <mutex>

#include "statrn32/Reader.h"

namespace statrn32 {

// A ring of a fixed number of blocks bounds the memory, however far the parser could run ahead.
class CBlockRing {
 public:
  // Parser: an empty block to fill, waiting for one; null when the reader has stopped.
  RECORD_BLOCK* BeginFill();
  // Parser: the block taken last is full.
  void EndFill();
  // Parser: no more blocks come.
  void Finish();

  // Reader: the oldest full block, waiting for one; null when there are no more. Gives back the one
  // taken before.
  const RECORD_BLOCK* Next();
  // Reader: wakes the parser for good.
  void Stop();

 private:
  static constexpr std::size_t kBlocks = 6;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::array<RECORD_BLOCK, kBlocks> blocks_;
  std::size_t filled_ = 0;   // blocks ever filled
  std::size_t emptied_ = 0;  // blocks ever given back
  bool held_ = false;        // the reader holds block `emptied_`
  bool finished_ = false;
  bool stopped_ = false;
};

}  // namespace statrn32
