// The field in which a cell is edited.
#pragma once

#include <QLineEdit>

// Lies over its cell and says how it was left: committed by Enter, Tab, the arrow keys or a loss of
// the focus, given up by Escape.
class CCellEditor final : public QLineEdit {
  Q_OBJECT

 public:
  explicit CCellEditor(QWidget* parent);

  // Shows `text`. One that was typed is gone on with, and Left and Right then leave the editor; one
  // that stood in the cell is selected.
  void Open(const QString& text, bool typed);
  // Marks the text as no value.
  void Refuse();

 signals:
  void Left(bool commit, int key);  // `key` is the one that left it, 0 for a loss of the focus

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  bool typed_ = false;
};
