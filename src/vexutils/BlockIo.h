// Reading and writing files in whole blocks, at 64-bit offsets. Descriptors are owned by the
// caller. A failure leaves its reason in errno.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

inline constexpr std::size_t kBlockBytes = std::size_t{1} << 20;

// Bytes in the file; -1 on failure.
std::int64_t FileBytes(int file);

// Reads up to `size` bytes from `offset` on, going on after short reads; fewer only at the end of
// the file. Returns the number read, or -1.
std::int64_t ReadAt(int file, std::int64_t offset, void* data, std::size_t size);

// Writes all of `size` bytes at `offset`.
bool WriteAt(int file, std::int64_t offset, const void* data, std::size_t size);

// Told the bytes copied so far; returns false to stop.
using CopyProgress = std::function<bool(std::int64_t)>;

// Copies `size` bytes between files at the given offsets, by the kernel where the file systems
// allow it and through a buffer of one block elsewhere. Fails with EIO when the source ends early
// and with ECANCELED when `progress` (may be empty) asked to stop.
bool CopyRange(int from, std::int64_t fromOffset, int to, std::int64_t toOffset, std::int64_t size,
               const CopyProgress& progress = {});

// Closes a descriptor at the end of a scope.
class CDescriptor {
 public:
  explicit CDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
  ~CDescriptor() { Close(); }
  CDescriptor(const CDescriptor&) = delete;
  CDescriptor& operator=(const CDescriptor&) = delete;
  // Opens a file for reading; false on failure. A folder fails with EISDIR, a pipe or device with
  // ESPIPE: files are read back and forth.
  bool OpenForReading(const char* name);
  void Close();
  // Closes what it holds and owns `descriptor` (-1 for none) from now on.
  void Take(int descriptor) {
    Close();
    descriptor_ = descriptor;
  }
  // Hands the descriptor over to the caller.
  int Release() { return std::exchange(descriptor_, -1); }
  int Get() const { return descriptor_; }
  bool IsOpen() const { return descriptor_ >= 0; }

 private:
  int descriptor_;
};
