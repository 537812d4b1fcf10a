// The window that shows how far a piece of long work has come.
#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <memory>

#include "host/Host.h"

namespace Ui {
class ProgressDlg;
}

// Blocks its parent's window while it is shown; Cancel and Escape ask the work to stop, nothing
// else closes it.
class CProgressDlg final : public QDialog {
  Q_OBJECT

 public:
  CProgressDlg(const QString& task, QWidget* parent);
  ~CProgressDlg() override;

  void ShowFraction(double fraction);  // 0 to 1; negative: not known
  bool IsCancelled() const { return cancelled_; }

  void reject() override;

 private:
  std::unique_ptr<Ui::ProgressDlg> ui_;
  bool cancelled_ = false;
};

// Progress of work that runs on the user-interface thread: the window comes up when the work has
// taken a while, and events are handled each time that it is brought up to date.
class CShownProgress final : public CProgress {
 public:
  CShownProgress(const QString& task, QWidget* parent);
  ~CShownProgress() override;
  CShownProgress(const CShownProgress&) = delete;
  CShownProgress& operator=(const CShownProgress&) = delete;

  bool Advance(double fraction) override;

 private:
  CProgressDlg window_;
  QElapsedTimer clock_;
  qint64 nextUpdate_;
};
