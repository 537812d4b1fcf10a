// A window that shows a text file in a fixed font: what outputs and syntaxes have in common. Find,
// zoom, print, and noticing that the file changes on disk.
#pragma once

#include "host/Types.h"
#include "vexapp/FileWatch.h"
#include "vexapp/FrameWindow.h"
#include "vexapp/TextPrinter.h"

class CFindBar;
class CVexApp;
class QAbstractScrollArea;
class QVBoxLayout;

class CTextWindow : public CFrameWindow {
  Q_OBJECT

 public:
  CTextWindow(CVexApp& app, QWidget* parent);

  // False, with a message, when the file cannot be read.
  bool Open(const QString& path);
  // Shows what the file holds now.
  bool Reload();
  const QString& Path() const { return path_; }

  bool Holds(const QString& path) const override { return IsSamePath(path_, path); }
  QString FileName() const override;
  bool IsModified() const override { return false; }
  virtual bool CanReplace() const { return false; }  // and be changed at all
  virtual bool Save() { return false; }
  virtual void SaveAs() = 0;
  virtual QString Description() const = 0;  // for the status bar

  void OpenFindBar(bool withReplace);
  void FindNext(bool forward);
  void Zoom(int steps);  // points
  void ResetZoom();
  qreal PointSize() const { return points_; }
  void Print();
  void PrintPreview();
  virtual TEXTTOPRINT PrintedText() const = 0;

 protected:
  // The widget with the text. Called once, from the constructor.
  void SetBody(QAbstractScrollArea* body);
  void AddAbove(QWidget* widget);
  CVexApp& App() const { return app_; }
  CFindBar& FindBar() { return *findBar_; }
  CFileWatch& FileWatch() { return watch_; }
  void ShowTitle();
  void SetPath(const QString& path);

  virtual bool Load(const CString& path, CString& reason) = 0;
  virtual void FileChanged() { Reload(); }
  enum class Found { No, Yes, FromTheOtherEnd };
  virtual Found FindText(const QString& text, bool matchCase, bool forward) = 0;
  virtual void Replace() {}
  virtual void ReplaceAll() {}
  virtual QString SelectedText() const = 0;
  virtual void SetPointSize(qreal points) = 0;

  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  virtual bool MayClose() { return true; }

 private:
  void SetZoom(qreal points);

  CVexApp& app_;
  QString path_;
  CFileWatch watch_;
  QVBoxLayout* layout_;
  QAbstractScrollArea* body_ = nullptr;
  CFindBar* findBar_;
  qreal points_;
};
