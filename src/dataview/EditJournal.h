// What was done to a data set, so that it can be undone and done again. The journal lies in a
// nameless file on disk, so memory does not grow with the number or the size of the steps; where it
// grows beyond a limit, the oldest steps are forgotten.
#pragma once

#include <cstdint>
#include <optional>

#include "host/Types.h"
#include "vexutils/BlockIo.h"

// Kinds of steps, as they stand in the journal.
enum class EditKind : std::int32_t {
  Cells,            // a rectangle of cells
  InsertCases,      // first = position, count
  DeleteCases,      // first, count; the payload holds the cells
  InsertVariables,  // first, count
  DeleteVariables,  // the list holds the variables, the payload their columns
  Sort,             // first = key, count = order; the payload holds the file as it was
  Select,           // the list holds the lines, the payload the file as it was
  Define,           // the description, with `count` variables added at the end
  Weight,           // the description
  Group,
};

// One step. Where its parts lie in the journal's file is the journal's business; the parts are
// texts of bytes and are read back on request.
struct EditStep {
  EditKind kind = EditKind::Cells;
  std::int64_t first = 0;
  std::int64_t count = 0;
  std::int64_t firstColumn = 0;  // of Cells: the rectangle is count rows by columns
  std::int64_t columns = 0;
  std::int64_t casesBefore = 0;
  std::int64_t variablesBefore = 0;
  CString list;              // small: variables or lines, as the kind says
  std::int64_t payload = 0;  // offset in Descriptor()
  std::int64_t payloadBytes = 0;
};

class CEditJournal {
 public:
  // Beyond so many bytes on disk the oldest steps go; the newest one stays in any case.
  static constexpr std::int64_t kDefaultLimit = std::int64_t{4} << 30;
  explicit CEditJournal(std::int64_t limit = kDefaultLimit) : limit_(limit) {}

  // Forgets everything and gives the space back.
  void Clear();

  // --- Writing ---
  // Starts a step behind the last one that is done; steps that were undone are gone then. A large
  // payload begins on a page, so that the kernel can copy to it. False when there is no room for a
  // file.
  bool Begin(bool largePayload);
  // Where the payload of the step goes, in Descriptor(); the caller writes it before Finish.
  std::int64_t PayloadOffset() const { return payload_; }
  // Ends the step that was begun. `before` and `after` are descriptions (empty: unchanged). False
  // when there is no room; the step is not there then.
  bool Finish(const EditStep& step, const CString& before, const CString& after);
  // Takes back what was begun. Steps that had been undone stay lost.
  void Abandon();

  // --- Going back and forth ---
  std::optional<EditKind> UndoKind() const;
  std::optional<EditKind> RedoKind() const;
  // The step to undo or redo with the description to put in place (empty: unchanged). Empty when it
  // cannot be read.
  struct Reading {
    EditStep step;
    CString description;
  };
  std::optional<Reading> ReadUndo() const;
  std::optional<Reading> ReadRedo() const;
  // The step has been undone or redone.
  void StepBack();
  void StepForward();

  // Is the data set as it was when MarkSaved was called last? Not before it was called.
  void MarkSaved() { saved_ = place_; }
  bool IsAtSaved() const { return saved_ == place_; }

  int Descriptor() const { return file_.Get(); }
  std::int64_t BytesOnDisk() const { return end_ - oldest_; }

 private:
  struct Record;
  // Places are where records begin.
  static constexpr std::int64_t kNowhere = -1;      // before the first
  static constexpr std::int64_t kUnreachable = -2;  // a state that no step leads to any more

  bool ReadRecord(std::int64_t at, Record& record) const;
  std::int64_t NextPlace() const;
  std::optional<Reading> ReadStep(std::int64_t at, bool before) const;
  void ForgetOldest();

  CDescriptor file_;
  std::int64_t limit_;
  std::int64_t oldest_ = 0;        // where the first record that is kept begins
  std::int64_t place_ = kNowhere;  // the last record that is done; below oldest_: none is
  std::int64_t end_ = 0;           // behind the last record
  std::int64_t payload_ = 0;       // of the record that is being written
  std::int64_t saved_ = kUnreachable;
};
