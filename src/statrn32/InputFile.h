// A file being read, with one large buffer.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vexutils/BlockIo.h"

namespace statrn32 {

// Positions are bytes from the start of the file. One thread reads; Progress and Stop may be called
// from another.
class CInputFile {
 public:
  // False with the reason in errno.
  bool Open(const std::string& name);
  std::int64_t Size() const { return size_; }
  std::int64_t Position() const { return position_; }

  // Reads up to `size` bytes at the position and moves it; fewer at the end of the file, -1 on
  // failure.
  std::int64_t Read(void* data, std::int64_t size);
  // False when the position would lie before the file. Beyond its end is allowed; reads give
  // nothing there.
  bool Seek(std::int64_t position);

  // Makes reads give `byte` at `position`, whatever stands there. For a few bytes of a header.
  void Replace(std::int64_t position, char byte);

  // 0 to 1.
  double Progress() const;
  // Makes every later read fail.
  void Stop() { stopped_.store(true, std::memory_order_relaxed); }

 private:
  bool Fill();
  void PutReplacements(char* data, std::int64_t begin, std::int64_t size) const;

  struct REPLACEMENT {
    std::int64_t position;
    char byte;
  };

  CDescriptor file_;
  std::int64_t size_ = 0;
  std::int64_t position_ = 0;
  std::unique_ptr<char[]> buffer_;
  std::int64_t begin_ = 0;  // of the buffer, in the file
  std::int64_t end_ = 0;
  std::vector<REPLACEMENT> replacements_;
  std::int64_t replacedEnd_ = 0;  // no replacement stands here or behind
  std::atomic<std::int64_t> reached_{0};
  std::atomic<bool> stopped_{false};
};

}  // namespace statrn32
