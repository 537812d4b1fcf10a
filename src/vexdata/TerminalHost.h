// The host of a program that runs in a terminal.
#pragma once

#include "host/Host.h"

class CTerminalHost final : public CHost {
 public:
  CTerminalHost();
  ~CTerminalHost() override;

  void SetQuiet(bool quiet) { quiet_ = quiet; }
  // Has a message been shown since the program started?
  bool HasSpoken() const { return spoken_; }

  // One line on standard error; questions are answered No.
  MessageAnswer ShowMessage(const CString& text, const CString& title,
                            MessageButtons buttons) override;
  void BeginWaitCursor() override {}
  void EndWaitCursor() override {}
  bool AskForFile(const FileDialogRequest&, FileDialogChoice&) override { return false; }
  // A bar on standard error when that is a terminal. Ctrl+C asks to stop.
  std::unique_ptr<CProgress> StartProgress(const CString& title) override;
  CVexAppUtil* GetApp() override { return nullptr; }
  CMainFrame* GetMainFrame() override { return nullptr; }
  std::vector<HostFileType> ExtraFileTypes() const override;

 private:
  CHost* previous_;
  bool quiet_ = false;
  bool spoken_ = false;
};
