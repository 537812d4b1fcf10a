// The grid that shows a data set. The view (core) drives it through CDataTable; the grid asks its
// view through CDataTableClient. Rows and columns are counted from 0 here.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "host/Types.h"

// The message that the table window sends its view after a right click: which menu is it to be?
inline constexpr std::string_view kQueryMenuType = "msgQueryMenuType";

enum class TableArea { None, Cell, RowHeading, ColumnHeading };

struct TableCell {
  std::int64_t row = -1;
  int column = -1;
  bool IsValid() const { return row >= 0 && column >= 0; }
};

// What the grid asks of the view behind it.
class CDataTableClient {
 public:
  virtual ~CDataTableClient() = default;
  // Fills `values` with one row (one value a column, as shown). False: there are no more rows.
  virtual bool GetRow(std::int64_t row, std::span<double> values) = 0;
  // The heading of a row, as bytes of the file (host/Text.h).
  virtual CString GetRowHeading(std::int64_t row) = 0;

  // The text that the editor of a cell opens on.
  virtual CString GetCellText(const TableCell&) const { return {}; }
  // The editor of a cell was left with this text. False: it is no value, nothing was changed.
  virtual bool CommitCell(const TableCell&, const CString&) { return false; }
  // What stands for a value of a column where labels are shown; empty: nothing does.
  virtual CString GetValueLabel(int /*column*/, double /*value*/) const { return {}; }

  // A right click hit an area.
  virtual void OnRightClick(TableArea) {}
  // Answers a message by its name; -1 to those that are not known.
  virtual int OnMessage(std::string_view) { return -1; }
};

class CDataTable {
 public:
  virtual ~CDataTable() = default;

  virtual void SetClient(CDataTableClient* client) = 0;
  virtual void SetColumnCount(int columns) = 0;
  virtual void SetRowCount(std::int64_t rows) = 0;
  virtual void SetColumnWidth(int column, int width) = 0;          // pixels at 96 per inch
  virtual void SetColumnAlignment(int column, int alignment) = 0;  // 0 left, 1 center, 2 right
  virtual void SetColumnPattern(int column, const CString& pattern) = 0;
  virtual void SetColumnHeading(int column, const CString& heading) = 0;
  virtual void SetRowHeadingWidth(int width) = 0;
  virtual void SetRowHeadingAlignment(int alignment) = 0;
  virtual void SetEditable(bool editable) = 0;

  virtual TableCell GetCurrentCell() const = 0;
  virtual void SetCurrentCell(const TableCell& cell) = 0;
  // Ends an edit that is going on: what was typed is committed.
  virtual void EndEdit() {}
  virtual std::int64_t GetFirstVisibleRow() const = 0;
  virtual int GetVisibleRowCount() const = 0;
  virtual void ScrollToRow(std::int64_t row) = 0;
  virtual void ScrollToColumn(int column) = 0;
  // Values, headings or counts changed: forget what was cached and draw anew.
  virtual void Redraw() = 0;
};
