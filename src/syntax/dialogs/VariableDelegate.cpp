#include "syntax/dialogs/VariableDelegate.h"

#include <QPainter>

namespace {
constexpr int kGap = 8;  // between a name and its type
}

void CVariableDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
  QStyledItemDelegate::paint(painter, option, index);
  const QString type = index.data(kVariableTypeRole).toString();
  const int room = option.rect.width() - option.fontMetrics.horizontalAdvance(type) - 2 * kGap;
  if (room < option.fontMetrics.horizontalAdvance(index.data().toString()) + kGap) return;
  const bool selected = (option.state & QStyle::State_Selected) != 0;
  painter->save();
  painter->setPen(
      option.palette.color(selected ? QPalette::HighlightedText : QPalette::PlaceholderText));
  painter->drawText(option.rect.adjusted(0, 0, -kGap, 0), Qt::AlignRight | Qt::AlignVCenter, type);
  painter->restore();
}

void CVariableDelegate::initStyleOption(QStyleOptionViewItem* option,
                                        const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  if (!index.data(kVariableUsedRole).toBool()) return;
  option->palette.setColor(QPalette::Text, option->palette.color(QPalette::PlaceholderText));
}
