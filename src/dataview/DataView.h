// The view of a data document: a spreadsheet whose columns are variables and whose rows are cases.
// It owns the scratch file of cells and drives the data-table control; without a control (command
// line, tests) it works all the same.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "dataview/ScratchFile.h"
#include "host/DataTable.h"
#include "host/Framework.h"

class CDataDoc;

class CDataView final : public CView, public CDataTableClient {
 public:
  // Adds itself to the document, which must outlive it. Tells the user when no scratch file could
  // be made.
  explicit CDataView(CDataDoc& document);
  ~CDataView() override;

  CDataDoc& GetDocument() { return document_; }

  // --- The scratch file ---
  const CString& GetScratchFileName() const { return scratch_.Name(); }
  // Closes the stream and opens it anew with a C mode. Null on failure.
  std::FILE* OpenScratchFile(const char* mode) { return scratch_.Open(mode); }
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
  // Shows or hides the data tool bar with the view.
  void OnActivateView(bool active);
  bool IsActive() const { return active_; }

  const CString& GetCellPattern() const { return cellPattern_; }
  const CString& GetHeadingPattern() const { return headingPattern_; }

 private:
  int CopyLeftOver(const LeftOverScratch& left, std::int64_t& records);

  CDataDoc& document_;
  CDataTable* table_ = nullptr;
  CScratchFile scratch_;
  std::vector<double> row_;
  CString cellPattern_;
  CString headingPattern_;
  bool active_ = false;
};
