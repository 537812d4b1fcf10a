#include "vexutils/FileSort.h"

#include <cerrno>
#include <fcntl.h>
#include <new>

#include <sys/stat.h>

#include "vexutils/BlockIo.h"
#include "vexutils/KeySort.h"
#include "vexutils/RunSort.h"
#include "vexutils/SortJob.h"
#include "vexutils/TempFile.h"

namespace {

bool Invalid() {
  errno = EINVAL;
  return false;
}

// Appending would put the records behind the file's end, whatever offset they are written at.
bool IsOpenForUpdate(int file) {
  const int flags = fcntl(file, F_GETFL);
  if (flags < 0) return false;
  if ((flags & O_ACCMODE) == O_RDWR && (flags & O_APPEND) == 0) return true;
  errno = EBADF;
  return false;
}

bool HoldsRecords(const SortJob& job) {
  std::int64_t bytes = 0;
  if (job.records < 0 || __builtin_mul_overflow(job.records, job.recordBytes, &bytes))
    return Invalid();
  const std::int64_t present = FileBytes(job.file);
  if (present < 0) return false;
  return bytes <= present || Invalid();
}

bool FillKey(SortJob& job, int key, int order) {
  if (order != kSortAscending && order != kSortDescending) return Invalid();
  if (key < 0 || static_cast<std::size_t>(key) >= job.recordBytes / sizeof(double))
    return Invalid();
  job.keyOffset = static_cast<std::size_t>(key) * sizeof(double);
  job.descending = order == kSortDescending;
  return true;
}

// Room for every byte of the records, so that a sparse file cannot meet a full disk half way. File
// systems that cannot promise it are taken as they are.
bool ReserveRoom(const SortJob& job) {
#ifdef __linux__
  struct stat info {};
  if (fstat(job.file, &info) != 0) return false;
  constexpr std::int64_t kStatBlock = 512;
  if (info.st_blocks * kStatBlock >= job.Bytes()) return true;
  if (fallocate(job.file, 0, 0, job.Bytes()) != 0) return errno == EOPNOTSUPP || errno == ENOSYS;
#endif
  return true;
}

bool MoveBack(const SortJob& job, int sorted) {
  const auto progress = [&job](std::int64_t done) {
    const double share = static_cast<double>(done) / static_cast<double>(job.Bytes());
    (void)job.Report(kCopyComplete + (1 - kCopyComplete) * share);  // too late to stop
    return true;
  };
  return ReserveRoom(job) && CopyRange(sorted, 0, job.file, 0, job.Bytes(), progress);
}

bool Sort(const SortJob& job) {
  CDescriptor sorted;
  KeySortResult result = KeySortResult::NotMapped;
  if (MaySortByKeys(job)) {
    sorted.Take(OpenUnnamedBeside(job.file));
    if (!sorted.IsOpen()) return false;
    result = SortByKeys(job, sorted.Get());
  }
  if (result == KeySortResult::WasSorted) return true;
  if (result == KeySortResult::Failed) return false;
  if (result == KeySortResult::NotMapped && !SortInRuns(job, sorted)) return false;
  return MoveBack(job, sorted.Get());
}

// The stream's buffer must not hide what stands in the file now, nor write over it later.
class CStreamAside {
 public:
  explicit CStreamAside(std::FILE* stream) : stream_(stream), flushed_(std::fflush(stream) == 0) {}
  ~CStreamAside() {
    const int error = errno;
    (void)fseeko(stream_, 0, SEEK_SET);
    errno = error;
  }
  CStreamAside(const CStreamAside&) = delete;
  CStreamAside& operator=(const CStreamAside&) = delete;
  bool IsFlushed() const { return flushed_; }

 private:
  std::FILE* stream_;
  bool flushed_;
};

}  // namespace

int fqsort(std::FILE* file, std::int64_t records, double* /*record*/, double* /*work1*/,
           double* /*work2*/, std::size_t recordBytes, int key, int order,
           const SortProgress& progress) {
  return fqsortWithin(kSortMemoryBytes, file, records, recordBytes, key, order, progress);
}

int fqsortWithin(std::size_t memoryBytes, std::FILE* file, std::int64_t records,
                 std::size_t recordBytes, int key, int order, const SortProgress& progress) {
  if (file == nullptr) return Invalid() ? 1 : 0;
  const CStreamAside aside(file);
  if (!aside.IsFlushed()) return 0;
  SortJob job;
  job.file = fileno(file);
  job.records = records;
  job.recordBytes = recordBytes;
  job.memory = memoryBytes;
  job.progress = &progress;
  if (!IsOpenForUpdate(job.file) || !FillKey(job, key, order) || !HoldsRecords(job)) return 0;
  if (records < 2) return 1;
  try {
    return Sort(job) ? 1 : 0;
  } catch (const std::bad_alloc&) {
    errno = ENOMEM;
  } catch (...) {
    errno = ECANCELED;  // what the caller's progress function threw
  }
  return 0;
}
