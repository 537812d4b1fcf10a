#include "vexutils/BlockIo.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <iterator>
#include <memory>
#include <unistd.h>

#include <sys/stat.h>

namespace {

// One call to the kernel copies at most this much, so that progress is told and a stop is heard.
constexpr std::int64_t kKernelCopyBytes = std::int64_t{32} << 20;

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
    const auto part = static_cast<std::size_t>(std::min(size - done, kKernelCopyBytes));
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
  switch (CopyByKernel(from, fromOffset, to, toOffset, size, progress, done)) {
    case KernelCopy::Done:
      return true;
    case KernelCopy::Failed:
      return false;
    case KernelCopy::Unsupported:
      break;
  }
  const auto block = std::make_unique<char[]>(kBlockBytes);
  while (done < size) {
    const auto part = static_cast<std::size_t>(
        std::min<std::int64_t>(size - done, static_cast<std::int64_t>(kBlockBytes)));
    const std::int64_t got = ReadAt(from, fromOffset + done, block.get(), part);
    if (got < 0) return false;
    if (static_cast<std::size_t>(got) < part) {
      errno = EIO;
      return false;
    }
    if (!WriteAt(to, toOffset + done, block.get(), part)) return false;
    done += got;
    if (!Continue(progress, done)) return false;
  }
  return true;
}

bool CDescriptor::OpenForReading(const char* name) {
  Close();
  descriptor_ = open(name, O_RDONLY | O_CLOEXEC);
  if (descriptor_ < 0) return false;
  struct stat info {};
  if (fstat(descriptor_, &info) == 0 && S_ISDIR(info.st_mode)) {
    Close();
    errno = EISDIR;
    return false;
  }
  return true;
}

void CDescriptor::Close() {
  if (descriptor_ >= 0) close(descriptor_);
  descriptor_ = -1;
}
