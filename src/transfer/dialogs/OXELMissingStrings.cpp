#include "transfer/dialogs/OXELMissingStrings.h"

#include <QKeyEvent>

COXELMissingStrings::COXELMissingStrings(QWidget* parent) : QListWidget(parent) {
  setEditTriggers(DoubleClicked | EditKeyPressed);
  // When the editor is gone: an item is not to be removed under it.
  connect(
      itemDelegate(), &QAbstractItemDelegate::closeEditor, this, [this] { Tidy(); },
      Qt::QueuedConnection);
}

void COXELMissingStrings::SetStrings(const QStringList& strings) {
  clear();
  for (const QString& text : strings) {
    auto* const item = new QListWidgetItem(text, this);
    item->setFlags(item->flags() | Qt::ItemIsEditable);
  }
  told_ = Strings();
}

QStringList COXELMissingStrings::Strings() const {
  QStringList strings;
  for (int row = 0; row < count(); ++row) {
    const QString text = item(row)->text().trimmed();
    if (!text.isEmpty()) strings << text;
  }
  return strings;
}

void COXELMissingStrings::Add() {
  auto* const item = new QListWidgetItem(QString(), this);
  item->setFlags(item->flags() | Qt::ItemIsEditable);
  setCurrentItem(item);
  editItem(item);
}

void COXELMissingStrings::RemoveCurrent() {
  delete takeItem(currentRow());
  Tidy();
}

void COXELMissingStrings::Tidy() {
  for (int row = count() - 1; row >= 0; --row) {
    const QString text = item(row)->text().trimmed();
    if (text.isEmpty() || findItems(text, Qt::MatchFixedString).size() > 1) {
      delete takeItem(row);
    }
  }
  if (Strings() == told_) return;
  told_ = Strings();
  emit Changed();
}

void COXELMissingStrings::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Insert) return Add();
  if (event->key() == Qt::Key_Delete) return RemoveCurrent();
  QListWidget::keyPressEvent(event);
}
