// The bar below a text that finds in it and, where the text can be changed, replaces.
#pragma once

#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;

class CFindBar final : public QWidget {
  Q_OBJECT

 public:
  explicit CFindBar(QWidget* parent = nullptr);

  // Shows itself with `text` to be found (empty: what was found last) and takes the focus.
  void Open(const QString& text, bool withReplace);
  QString Text() const;
  QString Replacement() const;
  bool MatchCase() const;
  // Says how it went; `failed` marks the field.
  void ShowResult(const QString& result, bool failed);

 signals:
  void FindAsked(bool forward);
  void ReplaceAsked();
  void ReplaceAllAsked();
  void Closed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QLineEdit* text_;
  QLineEdit* replacement_;
  QCheckBox* matchCase_;
  QLabel* result_;
  QWidget* replaceRow_;
};
