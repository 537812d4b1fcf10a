// Counts, mean, minimum and maximum of the selected cells, found out while nothing else is done.
#pragma once

#include <QObject>
#include <QTimer>

#include "dataview/DataView.h"

class CSelectionStatistics final : public QObject {
  Q_OBJECT

 public:
  explicit CSelectionStatistics(QObject* parent = nullptr);

  // Begins with another selection; `view` outlives it, or null is given before it goes. A single
  // cell has no statistics.
  void Watch(const CDataView* view, const CellRange& range);
  // Goes to the end at once.
  void Finish();

 signals:
  void Changed(const QString& text);

 private:
  void Slice();
  void Show(bool complete);

  const CDataView* view_ = nullptr;
  CellRange range_;
  std::int64_t row_ = 0;  // rows before it are done
  RangeStatistics sum_;
  QTimer pause_;
  QTimer idle_;
};
