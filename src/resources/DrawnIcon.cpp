#include "resources/DrawnIcon.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace {

// All pictures are drawn on a field of 24 by 24.
constexpr qreal kField = 24;
constexpr QRgb kAccent = 0xff2f7dd1;
constexpr QRgb kWarm = 0xffe39a2d;

struct Ink {
  QColor line;
  QColor fill;
  QColor accent;
};

void Arrow(QPainter& painter, QPointF from, QPointF to, const QColor& color) {
  painter.setPen(QPen(color, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawLine(from, to);
  const QPointF along = (to - from) / 2.2;
  const QPointF across(-along.y() * 0.75, along.x() * 0.75);
  painter.drawPolyline(QPolygonF({to - along + across, to, to - along - across}));
}

void Sheet(QPainter& painter, const Ink& ink, const QRectF& rect) {
  const qreal fold = 4.5;
  QPainterPath path(rect.topLeft());
  path.lineTo(rect.right() - fold, rect.top());
  path.lineTo(rect.right(), rect.top() + fold);
  path.lineTo(rect.bottomRight());
  path.lineTo(rect.bottomLeft());
  path.closeSubpath();
  painter.setPen(QPen(ink.line, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(ink.fill);
  painter.drawPath(path);
  painter.drawPolyline(QPolygonF({{rect.right() - fold, rect.top()},
                                  {rect.right() - fold, rect.top() + fold},
                                  {rect.right(), rect.top() + fold}}));
}

void Grid(QPainter& painter, const Ink& ink, const QRectF& rect) {
  painter.setPen(QPen(ink.line, 1.5));
  painter.setBrush(ink.fill);
  painter.drawRect(rect);
  painter.fillRect(QRectF(rect.left(), rect.top(), rect.width(), rect.height() / 3.5), ink.accent);
  painter.setPen(QPen(ink.line, 1));
  for (const qreal share : {1 / 3.5, 0.64}) {
    const qreal y = rect.top() + rect.height() * share;
    painter.drawLine(QPointF(rect.left(), y), QPointF(rect.right(), y));
  }
  for (const qreal share : {1 / 3.0, 2 / 3.0}) {
    const qreal x = rect.left() + rect.width() * share;
    painter.drawLine(QPointF(x, rect.top()), QPointF(x, rect.bottom()));
  }
}

void Folder(QPainter& painter, const Ink& ink) {
  painter.setPen(QPen(ink.line, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(QColor(kWarm));
  painter.drawPolygon(QPolygonF({{3, 19}, {3, 5}, {9, 5}, {11, 7.5}, {19, 7.5}, {19, 19}}));
  painter.setBrush(QColor(kWarm).lighter(125));
  painter.drawPolygon(QPolygonF({{3, 19}, {6, 11}, {22, 11}, {19, 19}}));
}

void Disk(QPainter& painter, const Ink& ink) {
  painter.setPen(QPen(ink.line, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(ink.accent);
  painter.drawPolygon(QPolygonF({{4, 4}, {17, 4}, {20, 7}, {20, 20}, {4, 20}}));
  painter.setBrush(ink.fill);
  painter.drawRect(QRectF(7.5, 4, 8, 5));
  painter.drawRect(QRectF(7, 12.5, 10, 7.5));
}

void Program(QPainter& painter, const Ink&) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(kAccent));
  painter.drawRoundedRect(QRectF(1, 1, 22, 22), 5, 5);
  painter.setBrush(Qt::white);
  for (const qreal y : {12.0, 16.5}) {
    for (const qreal x : {4.5, 9.75, 15.0}) painter.drawRect(QRectF(x, y, 4.4, 3.4));
  }
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPolyline(QPolygonF({{5, 5}, {8.5, 9}, {19, 4.5}}));
}

void SortBars(QPainter& painter, const Ink& ink) {
  painter.setPen(QPen(ink.line, 2.2, Qt::SolidLine, Qt::RoundCap));
  for (int i = 0; i < 4; ++i) {
    painter.drawLine(QPointF(11, 5.5 + 4.4 * i), QPointF(13 + 2.6 * i, 5.5 + 4.4 * i));
  }
  Arrow(painter, {6, 5}, {6, 19}, ink.accent);
}

// A sheet with lines of text; `command` colours the first word of each.
void Page(QPainter& painter, const Ink& ink, bool command) {
  Sheet(painter, ink, {4, 2.5, 16, 19});
  for (int i = 0; i < 4; ++i) {
    const qreal y = 8.5 + 3.2 * i;
    painter.setPen(QPen(command ? ink.accent : ink.line, 1.4, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(QPointF(7, y), QPointF(10, y));
    painter.setPen(QPen(ink.line, 1.4, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(QPointF(11.5, y), QPointF(i == 2 ? 14.5 : 17, y));
  }
}

void Printer(QPainter& painter, const Ink& ink) {
  painter.setPen(QPen(ink.line, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(ink.fill);
  painter.drawRect(QRectF(7, 3, 10, 6));
  painter.setBrush(ink.accent);
  painter.drawRoundedRect(QRectF(3, 9, 18, 8), 1.5, 1.5);
  painter.setBrush(ink.fill);
  painter.drawRect(QRectF(7, 14, 10, 7));
}

// An arrow that turns back to the left; `mirrored` to the right.
void TurnBack(QPainter& painter, const Ink& ink, bool mirrored) {
  if (mirrored) {
    painter.translate(kField, 0);
    painter.scale(-1, 1);
  }
  painter.setPen(QPen(ink.accent, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  QPainterPath path(QPointF(4, 9));
  path.lineTo(14, 9);
  path.arcTo(QRectF(9, 9, 11, 10), 90, -180);
  path.lineTo(9, 19);
  painter.drawPath(path);
  painter.drawPolyline(QPolygonF({{8.5, 4.5}, {4, 9}, {8.5, 13.5}}));
}

void Glass(QPainter& painter, const Ink& ink) {
  painter.setPen(QPen(ink.line, 2.2, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(QPointF(14.5, 14.5), QPointF(20.5, 20.5));
  painter.setPen(QPen(ink.accent, 2.2));
  painter.setBrush(ink.fill);
  painter.drawEllipse(QRectF(3.5, 3.5, 12.5, 12.5));
}

void Plus(QPainter& painter, QPointF at) {
  painter.setPen(QPen(QColor(kWarm), 2.6, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(at - QPointF(3.6, 0), at + QPointF(3.6, 0));
  painter.drawLine(at - QPointF(0, 3.6), at + QPointF(0, 3.6));
}

// A sheet with a new column or a new row.
void Insertion(QPainter& painter, const Ink& ink, bool column) {
  Grid(painter, ink, {2, 4, 15, 15});
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(kWarm).lighter(120));
  painter.drawRect(column ? QRectF(7, 4, 5, 15) : QRectF(2, 8.5, 15, 5));
  Plus(painter, {19, 18});
}

void Definition(QPainter& painter, const Ink& ink) {
  Grid(painter, ink, {2, 3, 15, 15});
  painter.setPen(QPen(ink.line, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(QColor(kWarm));
  painter.drawPolygon(QPolygonF({{10, 21}, {11, 17}, {18.5, 9.5}, {21.5, 12.5}, {14, 20}}));
}

void Funnel(QPainter& painter, const Ink& ink) {
  painter.setPen(QPen(ink.line, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(ink.accent);
  painter.drawPolygon(QPolygonF({{3, 4}, {21, 4}, {14, 12.5}, {14, 18}, {10, 21}, {10, 12.5}}));
}

void Scales(QPainter& painter, const Ink& ink) {
  painter.setPen(QPen(ink.line, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawLine(QPointF(12, 3), QPointF(12, 20));
  painter.drawLine(QPointF(8, 20.5), QPointF(16, 20.5));
  painter.drawLine(QPointF(4.5, 6), QPointF(19.5, 6));
  painter.setBrush(ink.accent);
  for (const qreal x : {4.5, 19.5}) {
    painter.drawPolyline(QPolygonF({{x - 3.5, 13}, {x, 6}, {x + 3.5, 13}}));
    painter.drawChord(QRectF(x - 3.5, 10, 7, 6), 180 * 16, 180 * 16);
  }
}

void Tag(QPainter& painter, const Ink& ink) {
  painter.setPen(QPen(ink.line, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(QColor(kWarm));
  painter.drawPolygon(QPolygonF({{3, 3}, {12, 3}, {21, 12}, {12, 21}, {3, 12}}));
  painter.setBrush(ink.fill);
  painter.drawEllipse(QRectF(5.5, 5.5, 4, 4));
}

void Paint(QPainter& painter, Picture picture, const Ink& ink) {
  switch (picture) {
    case Picture::Program:
      return Program(painter, ink);
    case Picture::New:
      return Sheet(painter, ink, {5, 3, 14, 18});
    case Picture::Open:
      return Folder(painter, ink);
    case Picture::Save:
      return Disk(painter, ink);
    case Picture::Import:
      Grid(painter, ink, {9, 5, 13, 14});
      return Arrow(painter, {1.5, 12}, {11, 12}, QColor(kWarm));
    case Picture::Export:
      Grid(painter, ink, {2, 5, 13, 14});
      return Arrow(painter, {12.5, 12}, {22, 12}, QColor(kWarm));
    case Picture::GoTo:
      Grid(painter, ink, {3, 4, 18, 16});
      return Arrow(painter, {12, 7}, {12, 16.5}, QColor(kWarm));
    case Picture::SortUp:
      return SortBars(painter, ink);
    case Picture::Variables:
      return Grid(painter, ink, {3, 4, 18, 16});
    case Picture::Output:
      return Page(painter, ink, false);
    case Picture::Syntax:
      return Page(painter, ink, true);
    case Picture::Print:
      return Printer(painter, ink);
    case Picture::Undo:
    case Picture::Redo:
      return TurnBack(painter, ink, picture == Picture::Redo);
    case Picture::Find:
      return Glass(painter, ink);
    case Picture::Define:
      return Definition(painter, ink);
    case Picture::InsertVariable:
    case Picture::InsertCase:
      return Insertion(painter, ink, picture == Picture::InsertVariable);
    case Picture::Select:
      return Funnel(painter, ink);
    case Picture::Weight:
      return Scales(painter, ink);
    case Picture::Labels:
      return Tag(painter, ink);
  }
}

class DrawnEngine final : public QIconEngine {
 public:
  explicit DrawnEngine(Picture picture) : picture_(picture) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    const QPalette palette = QGuiApplication::palette();
    const Ink ink{palette.color(QPalette::ButtonText), palette.color(QPalette::Base),
                  QColor(kAccent)};
    const qreal scale = std::min(rect.width(), rect.height()) / kField;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (mode == QIcon::Disabled) painter->setOpacity(0.35);
    painter->translate(rect.topLeft());
    painter->scale(scale, scale);
    Paint(*painter, picture_, ink);
    painter->restore();
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap result(size);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return result;
  }

  QIconEngine* clone() const override { return new DrawnEngine(picture_); }

 private:
  Picture picture_;
};

}  // namespace

QIcon DrawnIcon(Picture picture) {
  return QIcon(new DrawnEngine(picture));
}
