// Colours a syntax by what the engine's grammar says of its words.
#pragma once

#include <QSyntaxHighlighter>

class CSyntaxHighlighter final : public QSyntaxHighlighter {
  Q_OBJECT

 public:
  explicit CSyntaxHighlighter(QTextDocument* document);

  // Chooses the colours for light or dark ground.
  void SetDark(bool dark);

 protected:
  void highlightBlock(const QString& text) override;

 private:
  bool dark_ = false;
};
