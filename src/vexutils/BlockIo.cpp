#include "vexutils/BlockIo.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <iterator>
#include <memory>
#include <unistd.h>

#include <sys/stat.h>

namespace {

// Progress is told and a stop is heard after so many bytes.
constexpr std::int64_t kStepBytes = std::int64_t{32} << 20;
constexpr std::int64_t kCopyBytes = std::int64_t{128} << 10;
constexpr std::int64_t kPageBytes = 4096;

bool Continue(const CopyProgress& progress, std::int64_t done) {
  if (!progress || progress(done)) return true;
  errno = ECANCELED;
  return false;
}

enum class KernelCopy { Done, Unsupported, Failed };

// What the kernel answers where it cannot copy between the two files at all, or is not allowed to.
bool IsUnsupported(int error) {
  constexpr int kReasons[] = {EXDEV, EINVAL, ENOSYS, EOPNOTSUPP, EBADF, EPERM, ETXTBSY};
  return std::find(std::begin(kReasons), std::end(kReasons), error) != std::end(kReasons);
}

// Advances `done`; Unsupported leaves the rest to a plain copy.
KernelCopy CopyByKernel(int from, std::int64_t fromOffset, int to, std::int64_t toOffset,
                        std::int64_t size, const CopyProgress& progress, std::int64_t& done) {
#ifdef __linux__
  while (done < size) {
    off_t in = fromOffset + done;
    off_t out = toOffset + done;
    const auto part = static_cast<std::size_t>(std::min(size - done, kStepBytes));
    const ssize_t copied = copy_file_range(from, &in, to, &out, part, 0);
    if (copied < 0 && errno == EINTR) continue;
    if (copied < 0) {
      return IsUnsupported(errno) ? KernelCopy::Unsupported : KernelCopy::Failed;
    }
    // The end of the source, or a file system whose files look empty to the kernel: a plain copy
    // finds out.
    if (copied == 0) return KernelCopy::Unsupported;
    done += copied;
    if (!Continue(progress, done)) return KernelCopy::Failed;
  }
  return KernelCopy::Done;
#else
  (void)from, (void)fromOffset, (void)to, (void)toOffset, (void)size, (void)progress, (void)done;
  return KernelCopy::Unsupported;
#endif
}

// The rest of a copy, through a buffer that stays in the processor's cache. Blocks end where blocks
// of the target do.
bool CopyByBuffer(int from, std::int64_t fromOffset, int to, std::int64_t toOffset,
                  std::int64_t size, const CopyProgress& progress, std::int64_t done) {
  const auto block = std::make_unique<char[]>(kCopyBytes);
  std::int64_t told = done;
  while (done < size) {
    const std::int64_t left = kCopyBytes - (toOffset + done) % kCopyBytes;
    const auto part = static_cast<std::size_t>(std::min(size - done, left));
    const std::int64_t got = ReadAt(from, fromOffset + done, block.get(), part);
    if (got < 0) return false;
    if (static_cast<std::size_t>(got) < part) {
      errno = EIO;
      return false;
    }
    if (!WriteAt(to, toOffset + done, block.get(), part)) return false;
    done += got;
    if (done - told < kStepBytes && done < size) continue;
    told = done;
    if (!Continue(progress, done)) return false;
  }
  return true;
}

}  // namespace

std::int64_t FileBytes(int file) {
  struct stat info {};
  return fstat(file, &info) == 0 ? static_cast<std::int64_t>(info.st_size) : -1;
}

std::int64_t ReadAt(int file, std::int64_t offset, void* data, std::size_t size) {
  auto* const bytes = static_cast<char*>(data);
  std::size_t done = 0;
  while (done < size) {
    const ssize_t got =
        pread(file, bytes + done, size - done, offset + static_cast<std::int64_t>(done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return static_cast<std::int64_t>(done);
}

bool WriteAt(int file, std::int64_t offset, const void* data, std::size_t size) {
  const auto* const bytes = static_cast<const char*>(data);
  std::size_t done = 0;
  while (done < size) {
    const ssize_t put =
        pwrite(file, bytes + done, size - done, offset + static_cast<std::int64_t>(done));
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return false;
    done += static_cast<std::size_t>(put);
  }
  return true;
}

bool CopyRange(int from, std::int64_t fromOffset, int to, std::int64_t toOffset, std::int64_t size,
               const CopyProgress& progress) {
  std::int64_t done = 0;
  // Where pages of the source do not fall on pages of the target the kernel copies in pieces of
  // pages, which takes longer than going through a buffer.
  const bool pagesMatch = (fromOffset - toOffset) % kPageBytes == 0;
  if (pagesMatch) {
    const KernelCopy result = CopyByKernel(from, fromOffset, to, toOffset, size, progress, done);
    if (result != KernelCopy::Unsupported) return result == KernelCopy::Done;
  }
  return CopyByBuffer(from, fromOffset, to, toOffset, size, progress, done);
}

bool CDescriptor::OpenForReading(const char* name) {
  Close();
  descriptor_ = open(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // a pipe would wait for a writer
  if (descriptor_ < 0) return false;
  struct stat info {};
  if (fstat(descriptor_, &info) == 0 && S_ISREG(info.st_mode)) return true;
  Close();
  errno = S_ISDIR(info.st_mode) ? EISDIR : ESPIPE;
  return false;
}

void CDescriptor::Close() {
  if (descriptor_ >= 0) close(descriptor_);
  descriptor_ = -1;
}
