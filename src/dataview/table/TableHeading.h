// The heading row or heading column of the grid.
#pragma once

#include <QHeaderView>

class CTableCursor;
class CDataTableModel;

// Draws flat headings in the colours of the palette; those of the selected rows or columns are
// tinted.
class CTableHeading final : public QHeaderView {
  Q_OBJECT

 public:
  // Neither is owned, both outlive the heading.
  CTableHeading(Qt::Orientation orientation, const CTableCursor& cursor,
                const CDataTableModel& model, QWidget* parent);

 protected:
  void paintSection(QPainter* painter, const QRect& rect, int section) const override;

 private:
  bool IsTouched(int section) const;

  const CTableCursor& cursor_;
  const CDataTableModel& model_;
};
