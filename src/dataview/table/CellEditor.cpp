#include "dataview/table/CellEditor.h"

#include <QKeyEvent>
#include <QPainter>

namespace {
constexpr int kTextMargin = 2;  // with the field's own, the text stands where the cell's did
}

CCellEditor::CCellEditor(QWidget* parent) : QLineEdit(parent) {
  setObjectName("cellEditor");
  setFrame(false);
  setAutoFillBackground(true);
  setTextMargins(kTextMargin, 0, kTextMargin, 0);
  hide();
  connect(this, &QLineEdit::textEdited, this, [this] { setPalette(QPalette()); });
}

void CCellEditor::Open(const QString& text, bool typed) {
  typed_ = typed;
  setPalette(QPalette());
  setText(text);
  show();
  setFocus();
  typed ? end(false) : selectAll();
}

void CCellEditor::Refuse() {
  QPalette colors;
  colors.setColor(QPalette::Text, QColor(0xd0, 0x40, 0x40));
  setPalette(colors);
  selectAll();
}

// Tab would go to the next widget before it comes as a key.
bool CCellEditor::event(QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
      emit Left(true, key);
      return true;
    }
  }
  return QLineEdit::event(event);
}

void CCellEditor::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Escape:
      emit Left(false, event->key());
      return;
    case Qt::Key_Left:
    case Qt::Key_Right:
      if (!typed_ || event->modifiers() != Qt::NoModifier) break;
      [[fallthrough]];
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      emit Left(true, event->key());
      return;
    default:
      break;
  }
  QLineEdit::keyPressEvent(event);
}

void CCellEditor::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  // The field's own menu of the right mouse button takes the focus for a moment only.
  if (event->reason() != Qt::PopupFocusReason) emit Left(true, 0);
}

void CCellEditor::paintEvent(QPaintEvent* event) {
  QLineEdit::paintEvent(event);
  QPainter painter(this);
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.drawRect(rect().adjusted(1, 1, -1, -1));
}
