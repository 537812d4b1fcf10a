#include "dataview/CellFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>

#include "datadoc/CaseSelection.h"
#include "vexutils/BlockIo.h"

namespace {

// What is read and what is written of it stay in the processor's cache.
constexpr std::int64_t kChunkBytes = std::int64_t{128} << 10;
// Progress is told after so many bytes.
constexpr std::int64_t kTellBytes = std::int64_t{16} << 20;

bool Tell(const CellProgress& progress, double fraction) {
  if (!progress || progress(fraction)) return true;
  errno = ECANCELED;
  return false;
}

// Part of a progress, for a copy of `bytes` that starts when `before` of `all` bytes are done.
CopyProgress PartOf(const CellProgress& progress, std::int64_t before, std::int64_t all) {
  return [&progress, before, all](std::int64_t done) {
    return !progress || progress(static_cast<double>(before + done) / static_cast<double>(all));
  };
}

bool ReadWhole(int file, std::int64_t offset, std::vector<double>& cells, std::int64_t bytes) {
  const std::int64_t got = ReadAt(file, offset, cells.data(), static_cast<std::size_t>(bytes));
  if (got == bytes) return true;
  if (got >= 0) errno = EIO;
  return false;
}

// Neighbouring variables that move together, from one record to another.
struct Span {
  std::size_t from;
  std::size_t to;
  std::size_t count;
};

// The flagged (or, with `flag` false, the other) variables in their order, as spans from a record
// that has them all to one that has only them.
std::vector<Span> SpansOf(const std::vector<bool>& flags, bool flag) {
  std::vector<Span> spans;
  std::size_t to = 0;
  for (std::size_t i = 0; i < flags.size(); ++i) {
    if (flags[i] != flag) continue;
    const bool goesOn = !spans.empty() && spans.back().from + spans.back().count == i;
    if (goesOn) {
      ++spans.back().count;
    } else {
      spans.push_back({i, to, 1});
    }
    ++to;
  }
  return spans;
}

std::vector<Span> Reversed(std::vector<Span> spans) {
  for (Span& span : spans) std::swap(span.from, span.to);
  return spans;
}

std::size_t CellsOf(const std::vector<Span>& spans) {
  std::size_t cells = 0;
  for (const Span& span : spans) cells += span.count;
  return cells;
}

// Copies the spans of `records` records. The spans stand in the outer loop: the inner one then does
// the same for every record.
void Spread(const double* from, std::size_t fromStride, double* to, std::size_t toStride,
            std::size_t records, const std::vector<Span>& spans) {
  for (const Span& span : spans) {
    const double* source = from + span.from;
    double* target = to + span.to;
    for (std::size_t i = 0; i < records; ++i, source += fromStride, target += toStride) {
      if (span.count == 1) {
        *target = *source;
      } else {
        std::memcpy(target, source, span.count * sizeof(double));
      }
    }
  }
}

// Goes through the records of a shape in chunks.
class Chunks {
 public:
  Chunks(const CellShape& shape, std::int64_t widestRecordBytes)
      : shape_(shape),
        most_(std::max<std::int64_t>(1,
                                     kChunkBytes / std::max<std::int64_t>(1, widestRecordBytes))) {}

  std::size_t Most() const { return static_cast<std::size_t>(most_); }
  std::int64_t First() const { return first_; }
  std::size_t Count() const { return static_cast<std::size_t>(Part()); }
  bool AtEnd() const { return first_ >= shape_.records; }

  // To the next chunk; false when a stop is asked for.
  bool Next(const CellProgress& progress) {
    const std::int64_t part = Part();
    first_ += part;
    untold_ += part * shape_.RecordBytes();
    if (untold_ < kTellBytes && !AtEnd()) return true;
    untold_ = 0;
    return Tell(progress, static_cast<double>(first_) / static_cast<double>(shape_.records));
  }

 private:
  std::int64_t Part() const { return std::min(most_, shape_.records - first_); }

  CellShape shape_;
  std::int64_t most_;
  std::int64_t first_ = 0;
  std::int64_t untold_ = 0;
};

constexpr std::int64_t Bytes(std::size_t cells) {
  return static_cast<std::int64_t>(cells * sizeof(double));
}

}  // namespace

bool WriteZeros(int file, std::int64_t offset, std::int64_t bytes) {
#ifdef __linux__
  // Behind the end of a file the system gives zeros with the space.
  if (bytes > 0 && offset >= FileBytes(file)) {
    if (fallocate(file, 0, offset, bytes) == 0) return true;
    if (errno != EOPNOTSUPP && errno != ENOSYS) return false;
  }
#endif
  const std::vector<char> zeros(static_cast<std::size_t>(std::min(bytes, kChunkBytes)));
  for (std::int64_t done = 0; done < bytes;) {
    const std::int64_t part = std::min(bytes - done, kChunkBytes);
    if (!WriteAt(file, offset + done, zeros.data(), static_cast<std::size_t>(part))) return false;
    done += part;
  }
  return true;
}

bool CopyWithRecords(int from, const CellShape& shape, std::int64_t position, std::int64_t count,
                     int to, const CellProgress& progress, int filler, std::int64_t fillerOffset) {
  const std::int64_t split = position * shape.RecordBytes();
  const std::int64_t added = count * shape.RecordBytes();
  const std::int64_t all = shape.Bytes() + added;
  if (!CopyRange(from, 0, to, 0, split, PartOf(progress, 0, all))) return false;
  const bool filled =
      filler < 0 ? WriteZeros(to, split, added)
                 : CopyRange(filler, fillerOffset, to, split, added, PartOf(progress, split, all));
  return filled && CopyRange(from, split, to, split + added, shape.Bytes() - split,
                             PartOf(progress, split + added, all));
}

bool CopyWithoutRecords(int from, const CellShape& shape, std::int64_t first, std::int64_t end,
                        int to, const CellProgress& progress) {
  const std::int64_t before = first * shape.RecordBytes();
  const std::int64_t behind = end * shape.RecordBytes();
  const std::int64_t all = shape.Bytes() - (behind - before);
  return CopyRange(from, 0, to, 0, before, PartOf(progress, 0, all)) &&
         CopyRange(from, behind, to, before, shape.Bytes() - behind, PartOf(progress, before, all));
}

bool CopyVariables(int from, const CellShape& shape, const std::vector<bool>& flags, int to,
                   std::int64_t toOffset, const CellProgress& progress) {
  const auto variables = static_cast<std::size_t>(shape.variables);
  const std::vector<Span> spans = SpansOf(flags, true);
  const std::size_t width = CellsOf(spans);
  Chunks chunks(shape, shape.RecordBytes());
  std::vector<double> source(chunks.Most() * variables);
  std::vector<double> target(chunks.Most() * width);
  while (!chunks.AtEnd()) {
    const std::size_t records = chunks.Count();
    if (!ReadWhole(from, chunks.First() * shape.RecordBytes(), source,
                   Bytes(records * variables))) {
      return false;
    }
    Spread(source.data(), variables, target.data(), width, records, spans);
    const std::int64_t at = toOffset + chunks.First() * Bytes(width);
    if (!WriteAt(to, at, target.data(), records * width * sizeof(double))) return false;
    if (!chunks.Next(progress)) return false;
  }
  return true;
}

bool CopyWithVariables(int from, const CellShape& shape, const std::vector<bool>& added, int to,
                       const CellProgress& progress, int filler, std::int64_t fillerOffset) {
  const auto variables = static_cast<std::size_t>(shape.variables);
  const std::size_t width = added.size();
  const std::vector<Span> old = Reversed(SpansOf(added, false));
  const std::vector<Span> fresh = Reversed(SpansOf(added, true));
  const std::size_t freshWidth = CellsOf(fresh);
  Chunks chunks(shape, Bytes(width));
  std::vector<double> source(chunks.Most() * variables);
  std::vector<double> fill(filler < 0 ? 0 : chunks.Most() * freshWidth);
  std::vector<double> target(chunks.Most() * width);  // zeros, where nothing is spread to
  while (!chunks.AtEnd()) {
    const std::size_t records = chunks.Count();
    const std::int64_t first = chunks.First();
    if (!ReadWhole(from, first * shape.RecordBytes(), source, Bytes(records * variables))) {
      return false;
    }
    Spread(source.data(), variables, target.data(), width, records, old);
    if (filler >= 0) {
      const std::int64_t at = fillerOffset + first * Bytes(freshWidth);
      if (!ReadWhole(filler, at, fill, Bytes(records * freshWidth))) return false;
      Spread(fill.data(), freshWidth, target.data(), width, records, fresh);
    }
    if (!WriteAt(to, first * Bytes(width), target.data(), records * width * sizeof(double))) {
      return false;
    }
    if (!chunks.Next(progress)) return false;
  }
  return true;
}

bool CopySelected(int from, const CellShape& shape, const CCaseSelection& selection,
                  const std::vector<bool>& flags, int to, std::int64_t& kept,
                  const CellProgress& progress) {
  const auto variables = static_cast<std::size_t>(shape.variables);
  const std::vector<Span> spans = SpansOf(flags, true);
  const std::size_t width = CellsOf(spans);
  Chunks chunks(shape, shape.RecordBytes());
  std::vector<double> source(chunks.Most() * variables);
  std::vector<double> target(to < 0 ? 0 : chunks.Most() * width);
  for (kept = 0; !chunks.AtEnd();) {
    const std::size_t records = chunks.Count();
    if (!ReadWhole(from, chunks.First() * shape.RecordBytes(), source,
                   Bytes(records * variables))) {
      return false;
    }
    std::size_t keptHere = 0;
    for (std::size_t i = 0; i < records; ++i) {
      const double* const record = source.data() + i * variables;
      if (!selection.Keeps(record, chunks.First() + static_cast<std::int64_t>(i) + 1)) continue;
      if (to >= 0) Spread(record, variables, target.data() + keptHere * width, width, 1, spans);
      ++keptHere;
    }
    if (to >= 0 &&
        !WriteAt(to, kept * Bytes(width), target.data(), keptHere * width * sizeof(double))) {
      return false;
    }
    kept += static_cast<std::int64_t>(keptHere);
    if (!chunks.Next(progress)) return false;
  }
  return true;
}
