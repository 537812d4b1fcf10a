#include "vexutils/RunMerge.h"

#include <algorithm>
#include <cmath>
#include <fcntl.h>
#include <memory>
#include <utility>

#include "vexutils/MergeTree.h"
#include "vexutils/TempFile.h"

namespace {

// Between these a block is large enough that going from run to run costs a disk little, and small
// enough that memory is not spread without gain.
constexpr std::size_t kSmallestBlock = kBlockBytes;
constexpr std::size_t kLargestBlock = 16 * kBlockBytes;

// Gives the space of a stretch back. A matter of thrift alone: a file system that cannot do it
// keeps it.
void Release(int file, std::int64_t offset, std::int64_t bytes) {
#ifdef FALLOC_FL_PUNCH_HOLE
  const int before = errno;
  if (fallocate(file, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, offset, bytes) != 0)
    errno = before;
#else
  (void)file, (void)offset, (void)bytes;
#endif
}

// The records of one run, a block at a time.
class CRunReader {
 public:
  CRunReader(const SortJob& job, int file, const RUN& run, std::size_t blockBytes)
      : job_(&job),
        file_(file),
        next_(run.offset),
        left_(run.bytes),
        blockBytes_(blockBytes),
        block_(std::make_unique_for_overwrite<char[]>(blockBytes)) {}

  // Steps to the next record; false on failure. At the end of the run the key is kAfterAllKeys.
  bool Next() {
    at_ += job_->recordBytes;
    if (at_ >= held_ && !Fill()) return false;
    key_ = held_ == 0 ? kAfterAllKeys : job_->KeyOf(Record());
    return true;
  }
  std::uint64_t Key() const { return key_; }
  const char* Record() const { return &block_[at_]; }

 private:
  bool Fill() {
    at_ = 0;
    held_ = static_cast<std::size_t>(
        std::min<std::int64_t>(left_, static_cast<std::int64_t>(blockBytes_)));
    if (held_ == 0) return true;
    const std::int64_t got = ReadAt(file_, next_, block_.get(), held_);
    if (got < 0) return false;
    if (static_cast<std::size_t>(got) < held_) {
      errno = EIO;
      return false;
    }
    Release(file_, next_, got);
    next_ += got;
    left_ -= got;
    return true;
  }

  const SortJob* job_;
  int file_;
  std::int64_t next_;
  std::int64_t left_;
  std::size_t blockBytes_;
  std::unique_ptr<char[]> block_;
  std::size_t held_ = 0;
  std::size_t at_ = 0;
  std::uint64_t key_ = kAfterAllKeys;
};

// How many runs one merge takes, within the budget: a block for each, and what is left of one for
// the piece that is written.
std::size_t FanIn(const SortJob& job) {
  const std::size_t blocks = job.memory / std::max(kSmallestBlock, job.recordBytes);
  return blocks > 3 ? blocks - 1 : 2;
}

std::size_t BlockBytes(const SortJob& job, std::size_t runs) {
  const std::size_t share = std::min(job.memory / (runs + 1), kLargestBlock);
  return static_cast<std::size_t>(job.Offset(job.RecordsIn(share)));
}

// One pass over all records: groups of runs that stand side by side become one run each.
class CMergePass {
 public:
  CMergePass(const SortJob& job, int source, int target)
      : job_(job),
        source_(source),
        target_(target),
        pieceBytes_(static_cast<std::size_t>(
            job.Offset(job.RecordsIn(std::min(kPieceBytes, job.memory / 8))))),
        piece_(std::make_unique_for_overwrite<char[]>(pieceBytes_)) {}

  void ShowProgress(double from, double to) {
    from_ = from;
    to_ = to;
  }

  bool Merge(const RUN* runs, std::size_t count) {
    const std::size_t blockBytes = BlockBytes(job_, count);
    std::vector<CRunReader> readers;
    std::vector<std::uint64_t> keys;
    for (std::size_t i = 0; i < count; ++i) {
      readers.emplace_back(job_, source_, runs[i], blockBytes);
      if (!readers.back().Next()) return false;
      keys.push_back(readers.back().Key());
    }
    CMergeTree tree(std::move(keys));
    while (tree.FirstKey() != kAfterAllKeys) {
      CRunReader& reader = readers[tree.First()];
      std::memcpy(&piece_[held_], reader.Record(), job_.recordBytes);
      held_ += job_.recordBytes;
      if (held_ == pieceBytes_ && !Flush()) return false;
      if (!reader.Next()) return false;
      tree.ReplaceFirst(reader.Key());
    }
    return Flush();
  }

 private:
  bool Flush() {
    if (!WriteAt(target_, written_, piece_.get(), held_)) return false;
    written_ += static_cast<std::int64_t>(held_);
    held_ = 0;
    const double done = static_cast<double>(written_) / static_cast<double>(job_.Bytes());
    return job_.Report(from_ + (to_ - from_) * done);
  }

  const SortJob& job_;
  const int source_;
  const int target_;
  const std::size_t pieceBytes_;
  const std::unique_ptr<char[]> piece_;
  double from_ = 0;
  double to_ = 0;
  std::size_t held_ = 0;
  std::int64_t written_ = 0;
};

std::vector<RUN> Joined(const std::vector<RUN>& runs, std::size_t fanIn) {
  std::vector<RUN> joined;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (i % fanIn == 0) joined.push_back({runs[i].offset, 0});
    joined.back().bytes += runs[i].bytes;
  }
  return joined;
}

int PassesFor(std::size_t runs, std::size_t fanIn) {
  int passes = 0;
  for (; runs > 1; runs = (runs + fanIn - 1) / fanIn) ++passes;
  return passes;
}

}  // namespace

bool MergeRuns(const SortJob& job, CDescriptor& sorted, std::vector<RUN> runs, double from) {
  const std::size_t fanIn = FanIn(job);
  const double step = (kCopyComplete - from) / std::max(1, PassesFor(runs.size(), fanIn));
  for (; runs.size() > 1; from += step) {
    CDescriptor merged(OpenUnnamedBeside(job.file));
    if (!merged.IsOpen()) return false;
    CMergePass pass(job, sorted.Get(), merged.Get());
    pass.ShowProgress(from, from + step);
    for (std::size_t i = 0; i < runs.size(); i += fanIn) {
      if (!pass.Merge(&runs[i], std::min(fanIn, runs.size() - i))) return false;
    }
    runs = Joined(runs, fanIn);
    sorted.Take(merged.Release());
  }
  return true;
}
