// The table window: the grid control that shows a data set.
#pragma once

#include <QWidget>
#include <vector>

#include "dataview/table/TableCursor.h"
#include "host/DataTable.h"

class CDataGrid;
class QScrollBar;

// Shows any number of rows with no memory per row. The rows on the screen are asked of the client
// one at a time and kept in a small cache; all positions count absolute rows from 0.
class CDataViewTbl final : public QWidget, public CDataTable {
  Q_OBJECT

 public:
  explicit CDataViewTbl(QWidget* parent = nullptr);

  void SetClient(CDataTableClient* client) override;  // not owned; null before it goes
  void SetColumnCount(int columns) override;
  void SetRowCount(std::int64_t rows) override;
  void SetColumnWidth(int column, int width) override;
  void SetColumnAlignment(int column, int alignment) override;
  void SetColumnPattern(int column, const CString& pattern) override;
  void SetColumnHeading(int column, const CString& heading) override;
  void SetRowHeadingWidth(int width) override;  // the least width: long case numbers widen it
  void SetRowHeadingAlignment(int alignment) override;
  void SetEditable(bool editable) override;
  TableCell GetCurrentCell() const override;
  void SetCurrentCell(const TableCell& cell) override;
  void EndEdit() override;
  std::int64_t GetFirstVisibleRow() const override;
  int GetVisibleRowCount() const override;
  void ScrollToRow(std::int64_t row) override;
  void ScrollToColumn(int column) override;
  void Redraw() override;

  std::int64_t RowCount() const { return rows_; }
  int ColumnCount() const { return columns_; }
  bool IsEditable() const { return editable_; }
  QString ColumnHeading(int column) const;
  // The value of a cell in full; empty where there is none.
  QString ValueText(const TableCell& cell) const;
  CDataGrid& Grid() { return *grid_; }
  const CDataGrid& Grid() const { return *grid_; }

  // The selected cells.
  TableRange Selection() const;
  // The size of everything, in percent; held to what can be read.
  void SetZoom(int percent);
  int Zoom() const { return zoom_; }
  // Category labels instead of the values that have one.
  void ShowLabels(bool labels);
  bool ShowsLabels() const;
  // Of a column as it stands now, at a zoom of 100.
  int ColumnWidth(int column) const;
  QFont CellFont(bool heading) const;

 signals:
  void CurrentCellChanged();
  void ContextMenuAsked(int type, QPoint globalPoint);  // the menu type that the client answered
  void EditRefused();
  void ContentChanged();  // the client said that rows, columns or values changed
  void ZoomChanged();

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void SetFonts();
  void FitRowHeadings();
  void ApplyWidths();
  int Zoomed(int size) const { return size * zoom_ / 100; }
  void FollowWindow();
  void BarMoved(int action);

  CDataGrid* grid_;
  QScrollBar* bar_;
  std::int64_t rows_ = 0;
  int columns_ = 0;
  int rowHeadingWidth_ = 0;
  int zoom_ = 100;
  bool editable_ = false;
  std::vector<int> widths_;  // asked for, by column; 0: the usual one
  bool widthsChanged_ = false;
};
