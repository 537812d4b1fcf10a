#include "dataview/table/TableHeading.h"

#include <QPainter>

#include "dataview/table/DataTableModel.h"
#include "dataview/table/TableColors.h"
#include "dataview/table/TableCursor.h"

namespace {
constexpr int kTextMargin = 4;
}

CTableHeading::CTableHeading(Qt::Orientation orientation, const CTableCursor& cursor,
                             const CDataTableModel& model, QWidget* parent)
    : QHeaderView(orientation, parent), cursor_(cursor), model_(model) {
  setSectionsClickable(true);
  setHighlightSections(false);
}

void CTableHeading::paintSection(QPainter* painter, const QRect& rect, int section) const {
  if (!rect.isValid()) return;
  const TableColors colors(palette());
  painter->save();
  painter->fillRect(rect, IsTouched(section) ? colors.touchedHeading : colors.heading);
  painter->setPen(colors.line);
  painter->drawLine(rect.bottomLeft(), rect.bottomRight());
  painter->drawLine(rect.topRight(), rect.bottomRight());
  painter->setPen(palette().color(QPalette::ButtonText));
  const QRect inner = rect.adjusted(kTextMargin, 0, -kTextMargin, 0);
  const QString text = model_.headerData(section, orientation(), Qt::DisplayRole).toString();
  const int alignment = model_.headerData(section, orientation(), Qt::TextAlignmentRole).toInt();
  painter->drawText(inner, alignment | Qt::TextSingleLine,
                    fontMetrics().elidedText(text, Qt::ElideRight, inner.width()));
  painter->restore();
}

bool CTableHeading::IsTouched(int section) const {
  return orientation() == Qt::Vertical ? cursor_.IsRowTouched(model_.FirstRow() + section)
                                       : cursor_.IsColumnTouched(section);
}
