// The desktop program as the host of the component: messages, dialogs and progress in windows.
#pragma once

#include <QPointer>
#include <QWidget>

#include "host/Host.h"
#include "vexapp/AppUtil.h"
#include "vexapp/FileDialogs.h"

class CDataWindow;
class QDialog;

// Installs itself as the component's host while it lives.
class CVexApp final : public CHost {
 public:
  CVexApp();
  ~CVexApp() override;

  // The window that dialogs belong to, and its look as the component's main frame. Null when it
  // goes.
  void SetMainFrame(QWidget* window, CMainFrame* frame);
  // What dialogs ask before a file is chosen to be written.
  void SetTargetCheck(TargetCheck check) { targetCheck_ = std::move(check); }

  // What opens the files that the component asks to be opened.
  void SetOpener(CAppUtil::Opener opener) { util_.SetOpener(std::move(opener)); }

  // Is long work running? Documents are then locked and windows stay open.
  bool IsBusy() const { return running_ > 0; }
  // The window whose data are being written. Null while none are, as in an import.
  const CDataWindow* Writer() const { return writer_; }

  // Runs a dialog that belongs to work that is going on, without the wait cursor.
  int RunDialog(QDialog& dialog);

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
  TargetCheck targetCheck_;
  const CDataWindow* writer_ = nullptr;
  CAppUtil util_;
  int waitCursors_ = 0;
  int running_ = 0;
};

// Marks the program as busy while it lives, with `writer` as the window whose data are written.
class CBusy {
 public:
  explicit CBusy(CVexApp& app, const CDataWindow* writer = nullptr)
      : app_(app), writerBefore_(app.writer_) {
    ++app_.running_;
    if (writer != nullptr) app_.writer_ = writer;
  }
  ~CBusy() {
    --app_.running_;
    app_.writer_ = writerBefore_;
  }
  CBusy(const CBusy&) = delete;
  CBusy& operator=(const CBusy&) = delete;

 private:
  CVexApp& app_;
  const CDataWindow* writerBefore_;
};
