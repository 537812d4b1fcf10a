// Shows an output: fixed font, only the lines that are visible are ever drawn, so that its length
// costs nothing. Text is selected with the mouse and copied.
#pragma once

#include <QAbstractScrollArea>

#include "syntax/OutputText.h"

class COutputView final : public QAbstractScrollArea {
  Q_OBJECT

 public:
  explicit COutputView(QWidget* parent = nullptr);

  // `keepPlace`: the same line stays on top, as far as there is one.
  void ShowText(COutputText text, bool keepPlace);
  const COutputText& Text() const { return text_; }
  QString LineText(std::int64_t line) const;

  void SetPointSize(qreal points);
  std::int64_t FirstLine() const;  // the one on top
  void ScrollTo(std::int64_t line);

  enum class Found { No, Yes, FromTheOtherEnd };
  // Selects the next occurrence behind, or before, the selection.
  Found Find(const QString& text, bool matchCase, bool forward);
  QString SelectedText() const;

 public slots:
  void Copy();
  void SelectAll();

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  using Place = COutputText::Place;

  void Measure();
  void SetBars();
  int VisibleLines() const;
  qreal LeftOf(const Place& place) const;  // from the text's left edge
  Place PlaceAt(const QPointF& point) const;
  void Select(const Place& anchor, const Place& end);
  void ExtendTo(const QPointF& point);
  void DrawLine(QPainter& painter, std::int64_t line, qreal top);
  void DrawSelection(QPainter& painter, std::int64_t line, qreal top);
  QColor ColorOf(COutputText::Kind kind) const;

  COutputText text_;
  Place anchor_;
  Place end_;
  bool selecting_ = false;
  int scrollTimer_ = 0;
  QPointF mouse_;
  qreal cell_ = 8;  // width of a character
  int lineHeight_ = 16;
  qreal ascent_ = 12;
};
