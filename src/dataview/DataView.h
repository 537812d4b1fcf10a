// The view of a data document: a spreadsheet whose columns are variables and whose rows are cases.
// It owns the scratch file of cells and drives the data-table control; without a control (command
// line, tests) it works all the same.
//
// Rows and columns count from 0. Every operation below that changes the data set can be undone,
// shows its progress and can be stopped; what fails or is stopped leaves cells and description as
// they were, and a failure has been told. Operations that change something mark the document
// modified and bring the control up to date.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "dataview/CaseOperations.h"
#include "dataview/CellFile.h"
#include "dataview/CellText.h"
#include "dataview/EditJournal.h"
#include "dataview/ScratchFile.h"
#include "host/DataTable.h"
#include "host/Framework.h"

class CCaseSelection;
class CDataDoc;

// What a selection of cases would do, to be told before it is done.
struct SelectionEffect {
  std::int64_t cases = 0;               // as they are now
  std::int64_t removedCases = 0;        // of them
  std::vector<std::int32_t> variables;  // that go, counted from 0, ascending
};

// What to look for in the cells.
struct FindRequest {
  double low = 0;  // a value from `low` to `high`
  double high = 0;
  bool missing = false;  // instead: any missing value
  bool backward = false;
  int column = -1;  // in this variable only; negative: in all
  TableCell from;   // the search starts behind (or before) this cell and goes round; not valid: at
                    // the first (or last) cell
};

enum class FindResult { Found, NotFound, Stopped, Failed };

// Told now and then; returns false to stop.
using KeepGoing = std::function<bool()>;

// About the cells of a range; missing ones do not count as values.
struct RangeStatistics {
  std::int64_t values = 0;
  std::int64_t missing = 0;
  double mean = 0;  // of the values; the last three are 0 where there are none
  double minimum = 0;
  double maximum = 0;
};

class CDataView final : public CView, public CDataTableClient {
 public:
  // Adds itself to the document, which must outlive it. Tells the user when no scratch file could
  // be made.
  explicit CDataView(CDataDoc& document);
  ~CDataView() override;

  CDataDoc& GetDocument() { return document_; }
  const CDataDoc& GetDocument() const { return document_; }

  // --- The scratch file ---
  const CString& GetScratchFileName() const { return scratch_.Name(); }
  // Closes the stream and opens it anew with a C mode. Null on failure. With "w+b" the cells are
  // written anew, so nothing that was done before can be undone any more.
  std::FILE* OpenScratchFile(const char* mode);
  std::FILE* GetScratchStream() const { return scratch_.Stream(); }
  // Gives the row buffer one value a variable, opens the scratch file for reading and writing and
  // tells the control how many rows there are.
  void ReopenFile();
  // Takes over the cells and the description of a scratch file that was left behind, as a modified
  // document. False, with a message, when its cells cannot be copied; it then still stands.
  bool Recover(const LeftOverScratch& left);

  // --- The control ---
  // Sets up a control (null: none) as at creation: headings, patterns, columns and rows.
  // The control must outlive the view, or be taken away before it goes.
  void AttachTable(CDataTable* table);
  // One column a variable: alignment, width, pattern and heading.
  void RebuildColumns();
  // The values of one case as they are shown: what lies below -999999 shows as -999999.
  bool GetRow(std::int64_t row, std::span<double> values) override;
  // The case number; in a moment matrix the variable's name, "Mean" and "Std.Dev".
  CString GetRowHeading(std::int64_t row) override;
  // The label of the category that a value is.
  CString GetValueLabel(int column, double value) const override;
  // Sets the menu type, which stays until something else is hit.
  void OnRightClick(TableArea area) override;
  // The menu type: 0 cell, 1 row heading, 2 column heading, -1 before the first right click.
  int OnMessage(std::string_view message) override;
  // Shows or hides the data tool bar with the view.
  void OnActivateView(bool active);
  bool IsActive() const { return active_; }

  const CString& GetCellPattern() const { return cellPattern_; }
  const CString& GetHeadingPattern() const { return headingPattern_; }
  // The format command: keeps the settings for the whole application, a width that leaves no digit
  // before the point raised to decimals + 1, and gives every column its width, alignment and
  // pattern.
  void ApplyFormat(DisplaySettings settings);

  // --- Cells ---
  // The control's current cell; not valid without a control.
  TableCell GetCurrentCell() const;
  // The cell last committed.
  const TableCell& GetCommittedCell() const { return committed_; }
  bool IsInTable(const TableCell& cell) const;
  // As it stands in the file. Empty where there is no such cell or it cannot be read.
  std::optional<double> GetCellValue(const TableCell& cell) const;
  // The text that the cell editor opens on; empty where there is no such cell.
  CString GetCellText(const TableCell& cell) const override;
  // What the editor was left with goes into the cell: one write, flushed. False, and nothing
  // changes, when the text is no number; blank text is the missing-data code. In a moment matrix
  // nothing is written; the document is marked modified all the same.
  bool CommitCell(const TableCell& cell, const CString& text) override;
  bool CommitValue(const TableCell& cell, double value);
  // Copy and Paste on the value clipboard, which holds one value of this view.
  void OnEditCopy();
  void OnEditPaste();
  double GetValueClipboard() const { return valueClipboard_; }
  // Cells as tab-separated text for the system clipboard, each in full. Empty, after a message,
  // when they cannot be read or are more than a clipboard can sensibly take.
  std::optional<CString> CopyBlock(const CellRange& range) const;
  // Such text into the cells from `at` on, clipped to the table, as one step. The cells that were
  // written; empty when nothing was (a message said why, if there is something to say).
  CellRange PasteBlock(const TableCell& at, std::string_view text);
  // The missing-data code into every cell of a range, as one step.
  bool ClearCells(const CellRange& range);

  // --- Variables and cases ---
  // The scratch-file operations with what they do to the description, as one step each. Positions
  // beyond the end are the end. New cells hold 0.0.
  bool InsertCases(std::int64_t position, std::int64_t count);
  bool AppendCases(std::int64_t count);
  bool DeleteCases(std::int64_t first, std::int64_t end);
  // New variables are named "var%d" from the old number of variables + 1 on; weight and group
  // variable move with theirs.
  bool InsertVariables(std::int32_t position, std::int32_t count);
  // Counted from 0, in any order; at least one variable must stay.
  bool DeleteVariables(std::vector<std::int32_t> variables);
  // The commands, with what their dialogs came to; they scroll to what is new.
  bool OnInsertCases(const InsertCasesRequest& request);
  bool OnInsertVariables(const InsertVariablesRequest& request);
  bool OnDeleteCases(const DeleteCasesRequest& request);
  // Through CDataDoc::ProcessData_Sort. False when nothing was sorted.
  bool OnSortCases(const SortCasesRequest& request);

  // Takes back the copy that the definition dialog worked on (CDataDoc::GetTorvikCopy); variables
  // that it has more than the document get columns of 0.0 at the end.
  bool UpdateDefinition(const TORVIKSTRUCT& copy);
  // Stores the choice (counted from 1; 0: none) and saves at once: a system data file under its own
  // path, anything else through Save As. Cancelling that keeps the choice in the modified document.
  bool ChooseWeightVariable(std::int32_t variable);
  bool ChooseGroupVariable(std::int32_t variable);

  // --- Selection ---
  // What the "SC" and "SD" lines among `lines` would do; a pass over the cells. Empty after a
  // message: a line that is none, or no variable would be left.
  std::optional<SelectionEffect> PreviewSelection(const CStringList& lines);
  // Keeps the cases and drops the variables that the lines say.
  bool ApplySelection(const CStringList& lines);

  // --- Undo ---
  bool CanUndo() const { return journal_.UndoKind().has_value(); }
  bool CanRedo() const { return journal_.RedoKind().has_value(); }
  // What would be undone or redone, for a menu: "Insert Cases"; empty when there is nothing.
  CString UndoText() const;
  CString RedoText() const;
  bool Undo();
  bool Redo();
  // Off for programs that never undo: what a step takes away is then not kept.
  void SetUndoable(bool undoable) { undoable_ = undoable; }
  // The document has been saved: undoing to here makes it unmodified again.
  void OnDocumentSaved() { journal_.MarkSaved(); }

  // --- Looking ---
  // The next cell that fits, in `cell`.
  FindResult FindValue(const FindRequest& request, TableCell& cell);
  // Empty when it was stopped or the cells cannot be read.
  std::optional<RangeStatistics> GetStatistics(const CellRange& range,
                                               const KeepGoing& keepGoing = {}) const;

 private:
  class Search;

  int CopyLeftOver(const LeftOverScratch& left, std::int64_t& records);

  CellShape Shape() const;
  CellRange ClippedToTable(const CellRange& range) const;
  // The range must lie in the table.
  bool ReadCells(const CellRange& range, double* values) const;
  bool WriteCells(const CellRange& range, const double* values) const;
  bool WriteRange(const CellRange& range, std::span<const double> values) const;
  bool ChangeCells(const CellRange& range, std::span<const double> values);
  bool KeepCells(const CellRange& range, std::span<const double> values, EditStep& step);
  bool UndoCells(const EditStep& step, bool after);

  bool IsReadyFor(const EditStep& step) const;
  bool Perform(EditStep& step, TORVIKSTRUCT after);
  bool GoThrough(std::optional<CEditJournal::Reading> reading, bool forward);
  bool SaveForUndo(EditStep& step, const CellProgress& progress);
  bool ApplyForward(EditStep& step, const CellProgress& progress);
  bool ApplyBackward(EditStep& step, const CellProgress& progress);
  bool Rewrite(const std::function<bool(int from, int to)>& build);
  bool SetRecords(const CellShape& shape, std::int64_t records);
  bool SortCells(const EditStep& step, const CellProgress& progress);
  bool SelectCells(EditStep& step, const CellProgress& progress);
  void TellOfFailure(int error) const;
  void TellThatUndoEnds();
  void ShowChange(bool cellsToo);
  void ScrollTo(const EditStep& step);

  bool ChooseVariable(EditKind kind, std::int32_t variable);
  bool SaveChoice();
  bool ReadSelection(const CStringList& lines, CCaseSelection& selection) const;
  bool CountSelected(const CCaseSelection& selection, std::int64_t& kept) const;

  CDataDoc& document_;
  CDataTable* table_ = nullptr;
  CScratchFile scratch_;
  CEditJournal journal_;
  std::vector<double> row_;
  CString cellPattern_;
  CString headingPattern_;
  double valueClipboard_ = 0;
  TableCell committed_;
  bool undoable_ = true;
  bool active_ = false;
  std::int32_t menuType_ = -1;
};
