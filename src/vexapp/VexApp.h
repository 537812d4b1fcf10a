// The desktop program as the host of the component: messages, dialogs and progress in windows.
#pragma once

#include <QPointer>
#include <QWidget>

#include "host/Host.h"
#include "vexapp/AppUtil.h"

// Installs itself as the component's host while it lives.
class CVexApp final : public CHost {
 public:
  CVexApp();
  ~CVexApp() override;

  // The window that dialogs belong to, and its look as the component's main frame. Null when it
  // goes.
  void SetMainFrame(QWidget* window, CMainFrame* frame);

  // Is long work running? Documents are then locked and windows stay open.
  bool IsBusy() const { return running_ > 0; }

  MessageAnswer ShowMessage(const CString& text, const CString& title,
                            MessageButtons buttons) override;
  void BeginWaitCursor() override;
  void EndWaitCursor() override;
  bool AskForFile(const FileDialogRequest& request, FileDialogChoice& choice) override;
  std::unique_ptr<CProgress> StartProgress(const CString& title) override;
  CVexAppUtil* GetApp() override { return &util_; }
  CMainFrame* GetMainFrame() override { return frame_; }
  std::vector<HostFileType> ExtraFileTypes() const override;

 private:
  friend class CBusy;

  QWidget* DialogParent() const;

  CHost* previous_;
  QPointer<QWidget> window_;
  CMainFrame* frame_ = nullptr;
  CAppUtil util_;
  int waitCursors_ = 0;
  int running_ = 0;
};

// Marks the program as busy while it lives.
class CBusy {
 public:
  explicit CBusy(CVexApp& app) : app_(app) { ++app_.running_; }
  ~CBusy() { --app_.running_; }
  CBusy(const CBusy&) = delete;
  CBusy& operator=(const CBusy&) = delete;

 private:
  CVexApp& app_;
};
