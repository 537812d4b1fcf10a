#include "dataview/table/CellPainter.h"

#include <QPainter>

#include "dataview/table/DataTableModel.h"
#include "dataview/table/TableColors.h"
#include "dataview/table/TableCursor.h"

namespace {

constexpr int kTextMargin = 5;

void PaintFrame(QPainter* painter, const QRect& rect, const QColor& color) {
  painter->save();
  painter->setPen(QPen(color, 2));
  painter->setBrush(Qt::NoBrush);
  painter->drawRect(rect.adjusted(1, 1, -1, -1));
  painter->restore();
}

}  // namespace

CCellPainter::CCellPainter(const CTableCursor& cursor, const CDataTableModel& model,
                           QObject* parent)
    : QStyledItemDelegate(parent), cursor_(cursor), model_(model) {}

void CCellPainter::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
  const std::int64_t row = model_.FirstRow() + index.row();
  const TableColors colors(option.palette);
  const bool isCurrent = cursor_.Current().row == row && cursor_.Current().column == index.column();
  if (!isCurrent && cursor_.IsSelected(row, index.column())) {
    painter->fillRect(option.rect, colors.selected);
  }

  painter->setPen(colors.line);
  painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
  painter->drawLine(option.rect.topRight(), option.rect.bottomRight());

  const QString text = index.data(Qt::DisplayRole).toString();
  const QRect inner = option.rect.adjusted(kTextMargin, 0, -kTextMargin, 0);
  painter->setFont(option.font);
  const bool missing = model_.IsMissing(row, index.column());
  painter->setPen(option.palette.color(missing ? QPalette::PlaceholderText : QPalette::Text));
  painter->drawText(inner, index.data(Qt::TextAlignmentRole).toInt() | Qt::TextSingleLine,
                    option.fontMetrics.elidedText(text, Qt::ElideRight, inner.width()));
  if (isCurrent) PaintFrame(painter, option.rect, colors.currentFrame);
}

QSize CCellPainter::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const QString text = index.data(Qt::DisplayRole).toString();
  return {option.fontMetrics.horizontalAdvance(text) + 2 * kTextMargin + 2,
          option.fontMetrics.height()};
}
