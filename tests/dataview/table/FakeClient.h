// A client of the grid with any number of rows and a grid that shows it.
#pragma once

#include <QApplication>
#include <QHeaderView>
#include <map>

#include "dataview/table/DataGrid.h"
#include "dataview/table/DataViewTbl.h"

// Cell (r, c) holds 10 r + c; it remembers how often each row was asked for.
class FakeClient final : public CDataTableClient {
 public:
  bool GetRow(std::int64_t row, std::span<double> values) override {
    ++asked[row];
    if (row >= rowsPresent) return false;
    for (std::size_t c = 0; c < values.size(); ++c) {
      values[c] = 10.0 * static_cast<double>(row) + static_cast<double>(c);
    }
    if (special != 0) values[0] = special;
    return true;
  }
  CString GetRowHeading(std::int64_t row) override { return std::to_string(row + 1); }

  std::int64_t rowsPresent = INT64_MAX;
  double special = 0;  // where not 0: the first value of every row
  std::map<std::int64_t, int> asked;
};

struct ShownTable {
  ShownTable(std::int64_t rows, int columns) {
    table.SetRowHeadingWidth(40);
    table.SetRowHeadingAlignment(1);
    table.SetClient(&client);
    table.SetColumnCount(columns);
    for (int column = 0; column < columns; ++column) {
      table.SetColumnWidth(column, 78);
      table.SetColumnPattern(column, "########0.###");
      table.SetColumnHeading(column, "v" + std::to_string(column + 1));
    }
    table.SetRowCount(rows);
    table.Redraw();
    table.resize(600, 400);
    table.show();
    Settle();
  }
  ~ShownTable() { table.SetClient(nullptr); }

  static void Settle() {
    for (int i = 0; i < 3; ++i) QApplication::processEvents();
  }
  CDataGrid& Grid() { return table.Grid(); }
  // Draws the grid and everything in it.
  void Draw() {
    table.grab();
    Settle();
  }
  // What stands in a cell of the window, and beside and above it.
  QString Shown(int windowRow, int column) {
    const QAbstractItemModel& model = *Grid().model();
    return model.index(windowRow, column).data().toString();
  }
  QString RowHeading(int windowRow) {
    return Grid().model()->headerData(windowRow, Qt::Vertical).toString();
  }

  FakeClient client;
  CDataViewTbl table;
};
