// Steps: doing, undoing and redoing what changes cases and variables. A step that is done, or done
// again, goes forward; an undone one goes backward. The description is put in place only after the
// cells were, and both are as before when that fails.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "datadoc/CaseSelection.h"
#include "datadoc/DataDoc.h"
#include "datadoc/DescriptionBytes.h"
#include "dataview/CellFile.h"
#include "dataview/DataView.h"
#include "host/Host.h"

namespace {

constexpr const char* kNoWorkFile = "Unable to create temporary work file";

// By EditKind.
struct KindText {
  const char* command;  // as a menu names it
  const char* doing;    // as progress names it
};
constexpr KindText kKindTexts[] = {
    {"Change Cells", "Changing cells"},
    {"Insert Cases", "Inserting cases"},
    {"Delete Cases", "Deleting cases"},
    {"Insert Variables", "Inserting variables"},
    {"Delete Variables", "Deleting variables"},
    {"Sort Cases", "Sorting cases"},
    {"Select Cases", "Selecting cases"},
    {"Define Variables", "Defining variables"},
    {"Weight Cases", "Choosing the weight variable"},
    {"Group Variable", "Choosing the group variable"},
};

const KindText& TextOf(EditKind kind) {
  return kKindTexts[static_cast<std::size_t>(kind)];
}

// Does the step change the scratch file as a whole?
bool RewritesCells(const EditStep& step) {
  switch (step.kind) {
    case EditKind::Cells:
    case EditKind::Weight:
    case EditKind::Group:
      return false;
    case EditKind::Define:
      return step.count > 0;
    default:
      return true;
  }
}

bool KeepsPayload(EditKind kind) {
  return kind == EditKind::DeleteCases || kind == EditKind::DeleteVariables ||
         kind == EditKind::Sort || kind == EditKind::Select;
}

CellShape ShapeBefore(const EditStep& step) {
  return {step.casesBefore, static_cast<std::int32_t>(step.variablesBefore)};
}

// One flag for each variable that there is with the step's variables: set for those.
std::vector<bool> FlagsOf(const EditStep& step) {
  if (step.kind == EditKind::DeleteVariables) {
    std::vector<bool> flags(static_cast<std::size_t>(step.variablesBefore), false);
    std::vector<std::int32_t> variables(step.list.size() / sizeof(std::int32_t));
    std::memcpy(variables.data(), step.list.data(), step.list.size());
    for (const std::int32_t variable : variables) flags[static_cast<std::size_t>(variable)] = true;
    return flags;
  }
  std::vector<bool> flags(static_cast<std::size_t>(step.variablesBefore + step.count), false);
  const auto first = flags.begin() + step.first;
  std::fill(first, first + step.count, true);
  return flags;
}

CStringList LinesOf(const EditStep& step) {
  CStringList lines;
  for (std::size_t begin = 0; begin < step.list.size();) {
    const std::size_t end = step.list.find('\n', begin);
    lines.push_back(step.list.substr(begin, end - begin));
    begin = end + 1;
  }
  return lines;
}

// From one fraction of a progress to another.
CellProgress PartOf(CProgress& progress, double from, double to) {
  return [&progress, from, to](double done) { return progress.Advance(from + (to - from) * done); };
}

CopyProgress OfBytes(const CellProgress& progress, std::int64_t bytes) {
  return [&progress, bytes](std::int64_t done) {
    return !progress || progress(static_cast<double>(done) / static_cast<double>(bytes));
  };
}

}  // namespace

CString CDataView::UndoText() const {
  const auto kind = journal_.UndoKind();
  return kind ? TextOf(*kind).command : "";
}

CString CDataView::RedoText() const {
  const auto kind = journal_.RedoKind();
  return kind ? TextOf(*kind).command : "";
}

void CDataView::TellThatUndoEnds() {
  if (!undoable_) return;
  journal_.Clear();
  document_.WriteStatusInfo("There is no room to keep what was changed: it cannot be undone.");
}

// A scratch file that is not where it belongs can still be read and saved, but not replaced.
bool CDataView::IsReadyFor(const EditStep& step) const {
  if (!RewritesCells(step) || scratch_.IsInPlace()) return true;
  document_.WriteStatusInfo(scratch_.Name() + ": the temporary work file is gone");
  AfxMessageBox(kNoWorkFile);
  return false;
}

void CDataView::TellOfFailure(int error) const {
  if (error == ECANCELED) return;
  // Memory that runs out leaves no error number.
  const char* const why = error == 0 ? "out of memory" : std::strerror(error);
  document_.WriteStatusInfo(CString("The data set is unchanged: ") + why);
  AfxMessageBox(kNoWorkFile);
}

bool CDataView::Perform(EditStep& step, TORVIKSTRUCT after) {
  if (!IsReadyFor(step)) return false;
  const CWaitCursor wait;
  step.casesBefore = document_.GetRecnum();
  step.variablesBefore = document_.GetVarnum();
  const bool slow = RewritesCells(step);
  auto progress = slow ? Host().StartProgress(TextOf(step.kind).doing) : nullptr;
  const double share = KeepsPayload(step.kind) ? 0.4 : 0;
  bool kept = undoable_ && journal_.Begin(true);
  errno = 0;
  if (kept && !SaveForUndo(step, progress ? PartOf(*progress, 0, share) : CellProgress())) {
    const bool stopped = errno == ECANCELED;
    journal_.Abandon();
    if (stopped) return false;
    kept = false;
  }
  if (!ApplyForward(step, progress ? PartOf(*progress, share, 1) : CellProgress())) {
    const int error = errno;
    if (kept) journal_.Abandon();
    ReopenFile();
    progress.reset();
    TellOfFailure(error);
    return false;
  }
  progress.reset();
  if (step.kind == EditKind::Select) after.records = static_cast<std::int32_t>(step.count);
  const CString before = DescriptionToBytes(*document_.GetTorvik());
  document_.SetTorvik(std::move(after));
  const CString now = DescriptionToBytes(*document_.GetTorvik());
  if (!kept || !journal_.Finish(step, before, now)) TellThatUndoEnds();
  document_.SetModifiedFlag();
  ShowChange(slow);
  return true;
}

bool CDataView::Undo() {
  return GoThrough(journal_.ReadUndo(), false);
}

bool CDataView::Redo() {
  return GoThrough(journal_.ReadRedo(), true);
}

bool CDataView::GoThrough(std::optional<CEditJournal::Reading> reading, bool forward) {
  if (!reading || !IsReadyFor(reading->step)) return false;
  EditStep& step = reading->step;
  std::optional<TORVIKSTRUCT> data;
  if (!reading->description.empty()) {
    data.emplace();
    if (!DescriptionFromBytes(reading->description, *data)) return false;
  }
  const CWaitCursor wait;
  const bool slow = RewritesCells(step);
  auto bar = slow ? Host().StartProgress(TextOf(step.kind).doing) : nullptr;
  const CellProgress progress = bar ? PartOf(*bar, 0, 1) : CellProgress();
  errno = 0;
  if (!(forward ? ApplyForward(step, progress) : ApplyBackward(step, progress))) {
    const int error = errno;
    ReopenFile();
    bar.reset();
    TellOfFailure(error);
    return false;
  }
  bar.reset();
  if (data) document_.SetTorvik(std::move(*data));
  forward ? journal_.StepForward() : journal_.StepBack();
  document_.SetModifiedFlag(!journal_.IsAtSaved());
  if (data) {
    ShowChange(slow);
  } else if (table_ != nullptr) {
    table_->Redraw();
  }
  ScrollTo(step);
  return true;
}

// Columns, rows and what a recovery would need.
void CDataView::ShowChange(bool cellsToo) {
  RebuildColumns();
  ReopenFile();
  if (table_ != nullptr && cellsToo) table_->Redraw();
}

// Where the step was, so that the user sees what happened.
void CDataView::ScrollTo(const EditStep& step) {
  if (table_ == nullptr) return;
  switch (step.kind) {
    case EditKind::Cells:
      table_->SetCurrentCell({step.first, static_cast<int>(step.firstColumn)});
      break;
    case EditKind::InsertCases:
    case EditKind::DeleteCases:
      if (document_.GetRecnum() > 0) {
        table_->ScrollToRow(std::min<std::int64_t>(step.first, document_.GetRecnum() - 1));
      }
      break;
    case EditKind::InsertVariables:
    case EditKind::DeleteVariables:
      if (document_.GetVarnum() > 0) {
        table_->ScrollToColumn(
            static_cast<int>(std::min<std::int64_t>(step.first, document_.GetVarnum() - 1)));
      }
      break;
    default:
      break;
  }
}

// Copies what the step takes away into the journal.
bool CDataView::SaveForUndo(EditStep& step, const CellProgress& progress) {
  const CellShape shape = ShapeBefore(step);
  step.payload = journal_.PayloadOffset();
  if (!KeepsPayload(step.kind)) return true;
  std::FILE* const stream = scratch_.Stream();
  if (stream == nullptr) return false;
  const int from = fileno(stream);
  const int to = journal_.Descriptor();
  if (step.kind == EditKind::DeleteVariables) {
    step.payloadBytes = shape.records * step.count * static_cast<std::int64_t>(sizeof(double));
    return CopyVariables(from, shape, FlagsOf(step), to, step.payload, progress);
  }
  const bool part = step.kind == EditKind::DeleteCases;
  const std::int64_t begin = part ? step.first * shape.RecordBytes() : 0;
  step.payloadBytes = part ? step.count * shape.RecordBytes() : shape.Bytes();
  return CopyRange(from, begin, to, step.payload, step.payloadBytes,
                   OfBytes(progress, step.payloadBytes));
}

bool CDataView::ApplyForward(EditStep& step, const CellProgress& progress) {
  const CellShape shape = ShapeBefore(step);
  const std::int64_t end = step.first + step.count;
  switch (step.kind) {
    case EditKind::Cells:
      return UndoCells(step, true);
    case EditKind::InsertCases:
      if (step.first == shape.records) return SetRecords(shape, shape.records + step.count);
      return Rewrite([&](int from, int to) {
        return CopyWithRecords(from, shape, step.first, step.count, to, progress);
      });
    case EditKind::DeleteCases:
      if (end == shape.records) return SetRecords(shape, step.first);
      return Rewrite([&](int from, int to) {
        return CopyWithoutRecords(from, shape, step.first, end, to, progress);
      });
    case EditKind::InsertVariables:
    case EditKind::Define:
      if (step.count == 0 || scratch_.Stream() == nullptr) return true;
      return Rewrite([&](int from, int to) {
        return CopyWithVariables(from, shape, FlagsOf(step), to, progress);
      });
    case EditKind::DeleteVariables:
      return Rewrite([&](int from, int to) {
        std::vector<bool> kept = FlagsOf(step);
        kept.flip();
        return CopyVariables(from, shape, kept, to, 0, progress);
      });
    case EditKind::Sort:
      return SortCells(step, progress);
    case EditKind::Select:
      return SelectCells(step, progress);
    case EditKind::Weight:
    case EditKind::Group:
      return true;
  }
  return false;
}

bool CDataView::ApplyBackward(EditStep& step, const CellProgress& progress) {
  const CellShape before = ShapeBefore(step);
  const CellShape now = Shape();
  switch (step.kind) {
    case EditKind::Cells:
      return UndoCells(step, false);
    case EditKind::InsertCases:
      if (step.first == before.records) return SetRecords(now, before.records);
      return Rewrite([&](int from, int to) {
        return CopyWithoutRecords(from, now, step.first, step.first + step.count, to, progress);
      });
    case EditKind::DeleteCases:
      return Rewrite([&](int from, int to) {
        return CopyWithRecords(from, now, step.first, step.count, to, progress,
                               journal_.Descriptor(), step.payload);
      });
    case EditKind::InsertVariables:
    case EditKind::Define:
      if (step.count == 0 || scratch_.Stream() == nullptr) return true;
      return Rewrite([&](int from, int to) {
        std::vector<bool> kept = FlagsOf(step);
        kept.flip();
        return CopyVariables(from, now, kept, to, 0, progress);
      });
    case EditKind::DeleteVariables:
      return Rewrite([&](int from, int to) {
        return CopyWithVariables(from, now, FlagsOf(step), to, progress, journal_.Descriptor(),
                                 step.payload);
      });
    case EditKind::Sort:
    case EditKind::Select:
      return Rewrite([&](int, int to) {
        return CopyRange(journal_.Descriptor(), step.payload, to, 0, step.payloadBytes,
                         OfBytes(progress, step.payloadBytes));
      });
    case EditKind::Weight:
    case EditKind::Group:
      return true;
  }
  return false;
}

// Has `build` write a new file and puts it in the scratch file's place.
bool CDataView::Rewrite(const std::function<bool(int from, int to)>& build) {
  std::FILE* const stream = scratch_.Stream();
  CWorkFile work;
  if (stream == nullptr || !work.IsOpen()) return false;
  return build(fileno(stream), work.Descriptor()) && scratch_.Replace(work);
}

// Appends records of zeros or cuts the last ones off, without a copy.
bool CDataView::SetRecords(const CellShape& shape, std::int64_t records) {
  std::FILE* const stream = scratch_.Open("a+b");
  if (stream == nullptr) return false;
  const int file = fileno(stream);
  const std::int64_t bytes = records * shape.RecordBytes();
  if (ftruncate(file, std::min(bytes, shape.Bytes())) != 0) return false;
  if (bytes <= shape.Bytes() || WriteZeros(file, shape.Bytes(), bytes - shape.Bytes())) return true;
  const int error = errno;
  const bool restored = ftruncate(file, shape.Bytes()) == 0;
  errno = restored ? error : errno;
  return false;
}

bool CDataView::SortCells(const EditStep& step, const CellProgress& progress) {
  const CellShape shape = ShapeBefore(step);
  std::FILE* const stream = scratch_.Open("r+b");
  if (stream == nullptr) return false;
  row_.assign(static_cast<std::size_t>(shape.variables), 0.0);
  std::vector<double> work1(row_.size());
  std::vector<double> work2(row_.size());
  return fqsort(stream, shape.records, row_.data(), work1.data(), work2.data(),
                static_cast<std::size_t>(shape.RecordBytes()), static_cast<int>(step.first),
                static_cast<int>(step.count), progress) == 1;
}

bool CDataView::SelectCells(EditStep& step, const CellProgress& progress) {
  CCaseSelection selection;
  if (!ReadSelection(LinesOf(step), selection)) {
    errno = ECANCELED;  // it has been told
    return false;
  }
  std::vector<bool> flags(static_cast<std::size_t>(step.variablesBefore));
  for (std::size_t i = 0; i < flags.size(); ++i) {
    flags[i] = !selection.Drops(static_cast<std::int32_t>(i));
  }
  return Rewrite([&](int from, int to) {
    return CopySelected(from, ShapeBefore(step), selection, flags, to, step.count, progress);
  });
}
