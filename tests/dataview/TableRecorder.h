// A table control that shows nothing.
#pragma once

#include <vector>

#include "host/DataTable.h"

// Remembers what the view told it.
class TableRecorder final : public CDataTable {
 public:
  struct Column {
    int width = 0;
    int alignment = -1;
    CString pattern;
    CString heading;
  };
  CDataTableClient* client = nullptr;
  std::vector<Column> columns;
  std::int64_t rows = -1;
  int rowHeadingWidth = 0;
  bool editable = false;
  int redraws = 0;
  TableCell current;
  std::int64_t scrolledRow = -1;
  int scrolledColumn = -1;

  void SetClient(CDataTableClient* newClient) override { client = newClient; }
  void SetColumnCount(int count) override { columns.assign(static_cast<std::size_t>(count), {}); }
  void SetRowCount(std::int64_t count) override { rows = count; }
  void SetColumnWidth(int column, int width) override { At(column).width = width; }
  void SetColumnAlignment(int column, int alignment) override { At(column).alignment = alignment; }
  void SetColumnPattern(int column, const CString& pattern) override {
    At(column).pattern = pattern;
  }
  void SetColumnHeading(int column, const CString& heading) override {
    At(column).heading = heading;
  }
  void SetRowHeadingWidth(int width) override { rowHeadingWidth = width; }
  void SetRowHeadingAlignment(int) override {}
  void SetEditable(bool on) override { editable = on; }
  TableCell GetCurrentCell() const override { return current; }
  void SetCurrentCell(const TableCell& cell) override { current = cell; }
  std::int64_t GetFirstVisibleRow() const override { return 0; }
  int GetVisibleRowCount() const override { return 0; }
  void ScrollToRow(std::int64_t row) override { scrolledRow = row; }
  void ScrollToColumn(int column) override { scrolledColumn = column; }
  void Redraw() override { ++redraws; }

 private:
  Column& At(int column) { return columns.at(static_cast<std::size_t>(column)); }
};
