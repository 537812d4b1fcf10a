// The table view inside the grid control: it draws the window of rows and turns keys and the mouse
// into moves on absolute rows.
#pragma once

#include <QTableView>
#include <QTimer>

#include "dataview/table/DataTableModel.h"
#include "dataview/table/RowWindow.h"
#include "dataview/table/TableCursor.h"

class CCellEditor;

class CDataGrid final : public QTableView {
  Q_OBJECT

 public:
  explicit CDataGrid(QWidget* parent = nullptr);

  CDataTableModel& Model() { return *model_; }
  const CDataTableModel& Model() const { return *model_; }
  const CRowWindow& Rows() const { return rows_; }
  const CTableCursor& Cursor() const { return cursor_; }

  void SetSize(std::int64_t rows, int columns);
  void SetFirstRow(std::int64_t row);
  void ScrollRows(std::int64_t rows);
  void MoveTo(const TableCell& cell, bool extend = false,
              CTableCursor::Shape shape = CTableCursor::Shape::Cells);
  void SelectAll();
  void RevealRow(std::int64_t row);
  void RevealColumn(int column);

  // --- Editing (DataGridEdit.cpp) ---
  void SetEditable(bool editable);
  // Opens the editor on the current cell: on its exact value, or on what was typed instead.
  void StartEdit();
  void StartEditWith(const QString& typed);
  bool IsEditing() const;
  // Commits what was typed; a text that is no value is given up.
  void EndEdit();

  // What lies at a point of the whole control, and which cell (or whose heading) it is.
  TableArea AreaAt(const QPoint& point, TableCell& cell) const;

 signals:
  void WindowMoved();  // the first row, or the number of rows on the screen
  void CursorMoved();
  void EditRefused();         // what was typed is no value
  void ZoomAsked(int steps);  // by the wheel

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollTo(const QModelIndex& index, ScrollHint hint) override;

 private:
  void BuildHeadings();
  void OpenEditor(const QString& text, bool typed);
  void PlaceEditor();
  bool Commit();
  void LeaveEditor(bool commit, int key);
  bool MoveByKey(QKeyEvent* event);
  bool EditByKey(QKeyEvent* event);
  void MoveBy(std::int64_t rows, int columns, bool extend);
  void CursorChanged();
  void UpdateWindow();
  void DragTo(const QPoint& point);
  void ScrollWhileDragging();
  TableCell CellNear(const QPoint& viewportPoint) const;

  CDataTableModel* model_;
  CRowWindow rows_;
  CTableCursor cursor_;
  CCellEditor* editor_;
  TableCell edited_;
  bool editable_ = false;
  bool editing_ = false;
  int wheelRest_ = 0;  // part of a wheel step not yet turned into rows
  QTimer dragTimer_;
  QPoint dragPoint_;
};
