// Draws the cells of the grid.
#pragma once

#include <QStyledItemDelegate>

class CTableCursor;
class CDataTableModel;

class CCellPainter final : public QStyledItemDelegate {
  Q_OBJECT

 public:
  // Neither is owned, both outlive the painter.
  CCellPainter(const CTableCursor& cursor, const CDataTableModel& model, QObject* parent);

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 private:
  const CTableCursor& cursor_;
  const CDataTableModel& model_;
};
