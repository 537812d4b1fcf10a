// A child process that hands bytes to its parent: for libraries that read damaged files.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace statrn32 {

// The bytes that the child writes; the parent's end may be slow or gone.
class CPipeWriter {
 public:
  explicit CPipeWriter(int descriptor) : descriptor_(descriptor) {}
  // False when the parent no longer listens.
  bool Write(const void* data, std::size_t size);

 private:
  int descriptor_;
};

// Runs work in a copy of this process whose fault or endless loop ends the copy only. Used from one
// thread. The copy is ended with the object.
class CChildProcess {
 public:
  // Is this process such a copy? Then it needs none of its own.
  static bool IsChild();

  CChildProcess() = default;
  ~CChildProcess() { End(); }
  CChildProcess(const CChildProcess&) = delete;
  CChildProcess& operator=(const CChildProcess&) = delete;

  // Starts `work` with at most `memory` bytes and `seconds` of computing more than this process has
  // now. False, with the reason in errno, when there is no such process to be had.
  bool Start(const std::function<void(CPipeWriter*)>& work, std::int64_t memory, int seconds);
  // Exactly so many bytes; false when the child ended before, was silent for minutes, or failed.
  bool Read(void* data, std::size_t size);
  // Ends the child at once and tells how it had ended by itself, for a person to read; empty when
  // it was still at work or had done its work.
  std::string End();

 private:
  pid_t child_ = -1;
  int pipe_ = -1;
};

}  // namespace statrn32
