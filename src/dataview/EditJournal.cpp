#include "dataview/EditJournal.h"

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

#include "vexutils/TempFile.h"

namespace {

constexpr std::int64_t kPageBytes = 4096;
constexpr std::int64_t kLargestPart = std::int64_t{1} << 30;  // of what is read into memory

std::int64_t AtPage(std::int64_t offset) {
  return (offset + kPageBytes - 1) / kPageBytes * kPageBytes;
}

std::int64_t SizeOf(const CString& text) {
  return static_cast<std::int64_t>(text.size());
}

// Where a part of a record lies.
struct Part {
  std::int64_t offset = 0;
  std::int64_t bytes = 0;
};

bool ReadPart(int file, const Part& part, CString& text) {
  if (part.bytes < 0 || part.bytes > kLargestPart) return false;
  text.resize(static_cast<std::size_t>(part.bytes));
  return ReadAt(file, part.offset, text.data(), text.size()) == part.bytes;
}

}  // namespace

// The head of a step in the file. Behind it come the payload, then the small parts.
struct CEditJournal::Record {
  std::int64_t previous = kNowhere;  // where the step before begins
  std::int64_t end = 0;              // behind the step
  EditKind kind = EditKind::Cells;
  std::int64_t first = 0;
  std::int64_t count = 0;
  std::int64_t firstColumn = 0;
  std::int64_t columns = 0;
  std::int64_t casesBefore = 0;
  std::int64_t variablesBefore = 0;
  Part payload;
  Part list;
  Part before;
  Part after;
};

void CEditJournal::Clear() {
  file_.Close();
  oldest_ = end_ = payload_ = 0;
  place_ = kNowhere;
  saved_ = kUnreachable;
}

// The steps from the oldest to the last one that is done.
std::int64_t CEditJournal::NextPlace() const {
  if (place_ < oldest_) return oldest_;
  Record last;
  return ReadRecord(place_, last) ? last.end : end_;
}

bool CEditJournal::Begin(bool largePayload) {
  if (!file_.IsOpen()) {
    file_.Take(OpenUnnamedTemporary());
    if (!file_.IsOpen()) return false;
  }
  const std::int64_t next = NextPlace();
  const bool drops = next < end_;
  end_ = next;
  // The steps behind this place are gone, and others will stand where they stood.
  if (saved_ > place_) saved_ = kUnreachable;
  const std::int64_t behindHead = end_ + static_cast<std::int64_t>(sizeof(Record));
  payload_ = largePayload ? AtPage(behindHead) : behindHead;
  return !drops || ftruncate(file_.Get(), end_) == 0;
}

bool CEditJournal::Finish(const EditStep& step, const CString& before, const CString& after) {
  Record record;
  record.previous = place_;
  record.kind = step.kind;
  record.first = step.first;
  record.count = step.count;
  record.firstColumn = step.firstColumn;
  record.columns = step.columns;
  record.casesBefore = step.casesBefore;
  record.variablesBefore = step.variablesBefore;
  record.payload = {payload_, step.payloadBytes};
  record.list = {payload_ + step.payloadBytes, SizeOf(step.list)};
  record.before = {record.list.offset + record.list.bytes, SizeOf(before)};
  record.after = {record.before.offset + record.before.bytes, SizeOf(after)};
  record.end = record.after.offset + record.after.bytes;
  const CString parts = step.list + before + after;
  if (!WriteAt(file_.Get(), record.list.offset, parts.data(), parts.size()) ||
      !WriteAt(file_.Get(), end_, &record, sizeof record)) {
    Abandon();
    return false;
  }
  place_ = end_;
  end_ = record.end;
  ForgetOldest();
  return true;
}

void CEditJournal::Abandon() {
  // What was begun is only unused space; it is written over by the next step.
  if (file_.IsOpen() && ftruncate(file_.Get(), end_) != 0) Clear();
}

void CEditJournal::ForgetOldest() {
  bool forgot = false;
  while (end_ - oldest_ > limit_ && oldest_ < place_) {
    Record record;
    if (!ReadRecord(oldest_, record)) break;
    if (saved_ < oldest_) saved_ = kUnreachable;
    oldest_ = record.end;
    forgot = true;
  }
#ifdef __linux__
  // Where the file system cannot give the space back, it comes back with the file.
  if (forgot) {
    (void)fallocate(file_.Get(), FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, oldest_);
  }
#endif
}

bool CEditJournal::ReadRecord(std::int64_t at, Record& record) const {
  return file_.IsOpen() && at >= oldest_ && at < end_ &&
         ReadAt(file_.Get(), at, &record, sizeof record) == sizeof record;
}

std::optional<EditKind> CEditJournal::UndoKind() const {
  Record record;
  if (!ReadRecord(place_, record)) return std::nullopt;
  return record.kind;
}

std::optional<EditKind> CEditJournal::RedoKind() const {
  Record record;
  if (!ReadRecord(NextPlace(), record)) return std::nullopt;
  return record.kind;
}

std::optional<CEditJournal::Reading> CEditJournal::ReadStep(std::int64_t at, bool before) const {
  Record record;
  if (!ReadRecord(at, record)) return std::nullopt;
  Reading reading;
  EditStep& step = reading.step;
  step.kind = record.kind;
  step.first = record.first;
  step.count = record.count;
  step.firstColumn = record.firstColumn;
  step.columns = record.columns;
  step.casesBefore = record.casesBefore;
  step.variablesBefore = record.variablesBefore;
  step.payload = record.payload.offset;
  step.payloadBytes = record.payload.bytes;
  if (!ReadPart(file_.Get(), record.list, step.list) ||
      !ReadPart(file_.Get(), before ? record.before : record.after, reading.description)) {
    return std::nullopt;
  }
  return reading;
}

std::optional<CEditJournal::Reading> CEditJournal::ReadUndo() const {
  return ReadStep(place_, true);
}

std::optional<CEditJournal::Reading> CEditJournal::ReadRedo() const {
  return ReadStep(NextPlace(), false);
}

void CEditJournal::StepBack() {
  Record record;
  if (ReadRecord(place_, record)) place_ = record.previous;
}

void CEditJournal::StepForward() {
  Record record;
  const std::int64_t next = NextPlace();
  if (ReadRecord(next, record)) place_ = next;
}
