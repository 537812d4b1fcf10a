// The rows on the screen as an item model.
#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "dataview/table/RowCache.h"

// Qt keeps a record for every row of a model. This one therefore knows only the rows that are
// drawn: model row 0 is the first visible row of the table, and scrolling moves FirstRow(). Columns
// are those of the table.
class CDataTableModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit CDataTableModel(QObject* parent = nullptr);

  void SetClient(CDataTableClient* client);
  void SetColumnCount(int columns);  // forgets what was set by column
  void SetColumnAlignment(int column, int alignment);
  void SetColumnPattern(int column, const CString& pattern);
  void SetColumnHeading(int column, const CString& heading);
  void SetRowHeadingAlignment(int alignment) { rowHeadingAlignment_ = alignment; }

  // Shows `rows` rows from `firstRow` on.
  void SetWindow(std::int64_t firstRow, int rows);
  // Values or headings changed: reads them anew.
  void Forget();

  // Labels instead of the values that have one.
  void ShowLabels(bool labels);
  bool ShowsLabels() const { return labels_; }

  CDataTableClient* Client() const { return client_; }
  std::int64_t FirstRow() const { return firstRow_; }
  QString ColumnHeading(int column) const;
  QString RowHeading(std::int64_t row) const;
  // What the grid shows in a cell of any row.
  QString ShownText(std::int64_t row, int column) const;
  int ColumnAlignment(int column) const;
  // Is it a missing cell? Those are drawn paler.
  bool IsMissing(std::int64_t row, int column) const;
  // The value of a cell in full; empty where there is none.
  QString ValueText(std::int64_t row, int column) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  struct Column {
    std::uint16_t pattern = 0;  // into patterns_
    std::int8_t alignment = 2;
  };

  bool HasColumn(int column) const { return column >= 0 && column < columnCount(); }
  std::uint16_t PatternNumber(const CString& pattern);

  CDataTableClient* client_ = nullptr;
  std::int64_t firstRow_ = 0;
  int rows_ = 0;
  int rowHeadingAlignment_ = 1;
  bool labels_ = false;
  std::vector<Column> columns_;
  std::vector<CString> headings_;
  std::vector<CString> patterns_;  // few: most columns share one; the first is empty
  mutable CRowCache cache_;
};

// The value in full, as a person can type it again.
CString ExactText(double value);

// The value under a display pattern. Without a pattern, and from 2^53 on, where decimals mean
// nothing, it is shown in full. The width of a pattern never cuts a number.
CString CellText(double value, const CString& pattern);

// Qt's alignment for the codes 0 left, 1 center, 2 right.
Qt::Alignment AlignmentOf(int code);
