// The editor of a syntax: line numbers, colours, and one line that can be marked as wrong.
#pragma once

#include <QPlainTextEdit>
#include <QTextBlock>

class CSyntaxHighlighter;

class CSyntaxEdit final : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit CSyntaxEdit(QWidget* parent = nullptr);

  void SetPointSize(qreal points);
  // Counted from 1; 0: none. The mark goes when the text is changed.
  void MarkLine(int line, const QString& reason);
  int MarkedLine() const { return marked_; }
  // Counted from 0.
  int FirstVisibleLine() const { return firstVisibleBlock().blockNumber(); }
  void ScrollToLine(int line);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool viewportEvent(QEvent* event) override;

 private:
  friend class CLineNumbers;

  int NumbersWidth() const;
  void Arrange();
  void PaintNumbers(QPaintEvent* event);
  void ShowMarks();
  QColor MarkColor() const;

  QWidget* numbers_;
  CSyntaxHighlighter* highlighter_;
  int marked_ = 0;
  QString reason_;
};
