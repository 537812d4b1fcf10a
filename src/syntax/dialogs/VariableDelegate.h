// How lists of variables are drawn, in the dialogs of the procedures and in those of the data
// window.
#pragma once

#include <QStyledItemDelegate>

// Roles of an item: the text of its type, and whether it is chosen already.
inline constexpr int kVariableTypeRole = Qt::UserRole + 2;
inline constexpr int kVariableUsedRole = Qt::UserRole + 1;

// Names at the left, types at the right in a paler colour; what is used is paler altogether.
class CVariableDelegate final : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};
