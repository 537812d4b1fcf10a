#include "vexutils/KeySort.h"

#include <algorithm>
#include <memory>

#include <sys/mman.h>

#include "vexutils/BlockIo.h"
#include "vexutils/FreeMemory.h"
#include "vexutils/Parts.h"
#include "vexutils/SortEntry.h"

namespace {

// Shares of the progress at which the keys are read and sorted.
constexpr double kKeysRead = 0.15;
constexpr double kKeysSorted = 0.35;

// Records ahead of the one being copied whose bytes are asked for; a record beyond a few cache
// lines is fetched by the processor itself.
constexpr std::int64_t kRecordsAhead = 12;
constexpr std::size_t kBytesAhead = 256;
constexpr std::size_t kCacheLine = 64;

class CMapping {
 public:
  CMapping(int file, std::size_t size)
      : size_(size), start_(mmap(nullptr, size, PROT_READ, MAP_SHARED, file, 0)) {}
  ~CMapping() {
    if (IsMapped()) munmap(start_, size_);
  }
  CMapping(const CMapping&) = delete;
  CMapping& operator=(const CMapping&) = delete;
  bool IsMapped() const { return start_ != MAP_FAILED; }
  const char* Start() const { return static_cast<const char*>(start_); }

  // Brings every page in, in the order of the file: random first touches would be slow, and one
  // that the disk cannot read would end the process. Returns an errno value.
  int Populate() const {
#ifdef MADV_POPULATE_READ
    while (madvise(start_, size_, MADV_POPULATE_READ) != 0) {
      if (errno == EFAULT) return EIO;
      if (errno != EINTR && errno != EAGAIN)
        break;  // an older kernel maps the pages when they are touched
    }
#endif
    return 0;
  }

 private:
  std::size_t size_;
  void* start_;
};

class CKeySort {
 public:
  CKeySort(const SortJob& job, int sorted)
      : job_(job),
        target_(sorted),
        count_(static_cast<std::size_t>(job.records)),
        pieceRecords_(job.RecordsIn(kPieceBytes)) {}

  KeySortResult Run() {
    entries_ = std::make_unique_for_overwrite<SortEntry[]>(count_);
    if (!InParts(job_.records, [this](CPart& part) { return ReadKeys(part); }))
      return KeySortResult::Failed;
    if (IsSorted(entries_.get(), count_)) return KeySortResult::WasSorted;

    const CMapping source(job_.file, static_cast<std::size_t>(job_.Bytes()));
    if (!source.IsMapped()) return KeySortResult::NotMapped;
    if (!Sort(source)) return KeySortResult::Failed;
    source_ = source.Start();
    if (!InParts(job_.records, [this](CPart& part) { return Gather(part); }))
      return KeySortResult::Failed;
    return KeySortResult::Copied;
  }

 private:
  // Runs `move` on one piece of the part's records after the other. Returns an errno value.
  template <class Move>
  int EachPiece(CPart& part, double from, double to, Move move) {
    const auto piece = std::make_unique_for_overwrite<char[]>(
        static_cast<std::size_t>(pieceRecords_) * job_.recordBytes);
    for (std::int64_t first = part.First(); first < part.End(); first += pieceRecords_) {
      if (part.Stopped()) return ECANCELED;
      const std::int64_t records = std::min(pieceRecords_, part.End() - first);
      if (const int error = move(piece.get(), first, records)) return error;
      if (part.OnCallingThread() &&
          !job_.Report(from + (to - from) * part.Fraction(first + records)))
        return ECANCELED;
    }
    return 0;
  }

  int ReadKeys(CPart& part) {
    return EachPiece(
        part, 0, kKeysRead, [this](char* piece, std::int64_t first, std::int64_t records) {
          const auto size = static_cast<std::size_t>(job_.Offset(records));
          const std::int64_t got = ReadAt(job_.file, job_.Offset(first), piece, size);
          if (got < 0) return errno;
          if (static_cast<std::size_t>(got) < size) return EIO;
          for (std::int64_t i = 0; i < records; ++i) {
            entries_[static_cast<std::size_t>(first + i)] = SortEntry::Make(
                job_.KeyOf(piece + job_.Offset(i)), static_cast<std::uint32_t>(first + i));
          }
          return 0;
        });
  }

  // Sorts the keys on one thread while another brings the file's pages in.
  bool Sort(const CMapping& source) {
    spare_ = std::make_unique_for_overwrite<SortEntry[]>(count_);
    constexpr int kBoth = 2;
    const bool done = InParts(kBoth, [&](CPart& part) {
      int error = 0;
      for (std::int64_t task = part.First(); task < part.End() && error == 0; ++task) {
        if (task == 0) order_ = SortEntries(entries_.get(), spare_.get(), count_);
        if (task == 1) error = source.Populate();
      }
      return error;
    });
    (order_ == entries_.get() ? spare_ : entries_).reset();
    return done && job_.Report(kKeysSorted);
  }

  void AskFor(std::int64_t position) const {
    if (position >= job_.records) return;
    const char* const record = source_ + job_.Offset(order_[position].row);
    const std::size_t bytes = std::min(job_.recordBytes, kBytesAhead);
    for (std::size_t at = 0; at < bytes; at += kCacheLine) __builtin_prefetch(record + at);
  }

  int Gather(CPart& part) {
    return EachPiece(part, kKeysSorted, kCopyComplete,
                     [this](char* piece, std::int64_t first, std::int64_t records) {
                       char* to = piece;
                       for (std::int64_t i = first; i < first + records;
                            ++i, to += job_.recordBytes) {
                         AskFor(i + kRecordsAhead);
                         std::memcpy(to, source_ + job_.Offset(order_[i].row), job_.recordBytes);
                       }
                       const auto size = static_cast<std::size_t>(job_.Offset(records));
                       return WriteAt(target_, job_.Offset(first), piece, size) ? 0 : errno;
                     });
  }

  const SortJob& job_;
  const int target_;
  const std::size_t count_;
  const std::int64_t pieceRecords_;
  std::unique_ptr<SortEntry[]> entries_;
  std::unique_ptr<SortEntry[]> spare_;
  const SortEntry* order_ = nullptr;
  const char* source_ = nullptr;
};

}  // namespace

bool MaySortByKeys(const SortJob& job) {
  if (job.records > kMaxSortEntries) return false;
  const auto entries = static_cast<std::uint64_t>(job.records) * (2 * sizeof(SortEntry));
  const std::uint64_t pieces = kMaxParts * std::max(kPieceBytes, job.recordBytes);
  if (entries + pieces > job.memory) return false;
  // Besides the file itself there should be room for a good part of the copy that is being written.
  return job.Bytes() + job.Bytes() / 2 <= FreeMemoryBytes();
}

KeySortResult SortByKeys(const SortJob& job, int sorted) {
  return CKeySort(job, sorted).Run();
}
