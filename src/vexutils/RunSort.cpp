#include "vexutils/RunSort.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "vexutils/RunMerge.h"
#include "vexutils/SortEntry.h"
#include "vexutils/TempFile.h"

namespace {

// Sorts as many records at a time as the budget holds, and writes them in pieces.
class CRunMaker {
 public:
  explicit CRunMaker(const SortJob& job) : job_(job) {
    const std::size_t piece = std::min(kPieceBytes, job.memory / 8);
    pieceRecords_ = std::min(job.RecordsIn(piece), job.records);
    const std::size_t pieceBytes = static_cast<std::size_t>(job.Offset(pieceRecords_));
    const std::size_t left = job.memory > pieceBytes ? job.memory - pieceBytes : 0;
    const auto held = static_cast<std::int64_t>(left / (job.recordBytes + 2 * sizeof(SortEntry)));
    runRecords_ = std::clamp<std::int64_t>(held, 1, std::min(job.records, kMaxSortEntries));
    piece_ = std::make_unique_for_overwrite<char[]>(pieceBytes);
    run_ =
        std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(job.Offset(runRecords_)));
    entries_ = std::make_unique_for_overwrite<SortEntry[]>(static_cast<std::size_t>(runRecords_));
    spare_ = std::make_unique_for_overwrite<SortEntry[]>(static_cast<std::size_t>(runRecords_));
  }

  bool MakeAll(int target, double shareOfProgress, std::vector<RUN>& runs) {
    for (std::int64_t first = 0; first < job_.records; first += runRecords_) {
      const std::int64_t records = std::min(runRecords_, job_.records - first);
      if (!Read(first, records) || !Write(target, first, records)) return false;
      runs.push_back({job_.Offset(first), job_.Offset(records)});
      const double done = static_cast<double>(first + records) / static_cast<double>(job_.records);
      if (!job_.Report(shareOfProgress * done)) return false;
    }
    return true;
  }

 private:
  bool Read(std::int64_t first, std::int64_t records) {
    const auto size = static_cast<std::size_t>(job_.Offset(records));
    const std::int64_t got = ReadAt(job_.file, job_.Offset(first), run_.get(), size);
    if (got < 0) return false;
    if (static_cast<std::size_t>(got) == size) return true;
    errno = EIO;
    return false;
  }

  bool Write(int target, std::int64_t first, std::int64_t records) {
    for (std::int64_t i = 0; i < records; ++i) {
      entries_[i] =
          SortEntry::Make(job_.KeyOf(&run_[job_.Offset(i)]), static_cast<std::uint32_t>(i));
    }
    const SortEntry* const order =
        SortEntries(entries_.get(), spare_.get(), static_cast<std::size_t>(records));
    for (std::int64_t done = 0; done < records; done += pieceRecords_) {
      const std::int64_t part = std::min(pieceRecords_, records - done);
      for (std::int64_t i = 0; i < part; ++i) {
        std::memcpy(&piece_[job_.Offset(i)], &run_[job_.Offset(order[done + i].row)],
                    job_.recordBytes);
      }
      const auto size = static_cast<std::size_t>(job_.Offset(part));
      if (!WriteAt(target, job_.Offset(first + done), piece_.get(), size)) return false;
    }
    return true;
  }

  const SortJob& job_;
  std::int64_t runRecords_ = 0;
  std::int64_t pieceRecords_ = 0;
  std::unique_ptr<char[]> run_;
  std::unique_ptr<char[]> piece_;
  std::unique_ptr<SortEntry[]> entries_;
  std::unique_ptr<SortEntry[]> spare_;
};

}  // namespace

bool SortInRuns(const SortJob& job, CDescriptor& sorted) {
  sorted.Take(OpenUnnamedBeside(job.file));
  if (!sorted.IsOpen()) return false;
  constexpr double kRunsMade = kCopyComplete / 2;
  std::vector<RUN> runs;
  if (!CRunMaker(job).MakeAll(sorted.Get(), kRunsMade, runs)) return false;
  return MergeRuns(job, sorted, runs, kRunsMade);
}
