// What a window inside the main window is: a data window, an output or a syntax.
#pragma once

#include <QWidget>

class CFrameWindow : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;

  // Is it the file of this window, under whatever name?
  virtual bool Holds(const QString& path) const = 0;
  virtual QString FileName() const = 0;  // without its folder
  virtual bool IsModified() const = 0;

 signals:
  void TitleChanged();
};

// Do both names lead to the same file, or to the same place where there is none?
bool IsSamePath(const QString& a, const QString& b);
