// The host of a program that runs in a terminal.
#pragma once

#include "host/Host.h"

class CTerminalHost final : public CHost, public CMainFrame, public CStatusBar, public CVexAppUtil {
 public:
  CTerminalHost();
  ~CTerminalHost() override;

  void SetQuiet(bool quiet) { quiet_ = quiet; }
  // Has a message been shown since the program started?
  bool HasSpoken() const { return spoken_; }

  // A line that begins with "note: ", unless the program is to be quiet.
  void ShowNote(const CString& text) override;
  // One line on standard error, with the reason that the status bar was told last; questions are
  // answered No.
  MessageAnswer ShowMessage(const CString& text, const CString& title,
                            MessageButtons buttons) override;
  void BeginWaitCursor() override {}
  void EndWaitCursor() override {}
  bool AskForFile(const FileDialogRequest&, FileDialogChoice&) override { return false; }
  // A bar on standard error when that is a terminal. Ctrl+C asks to stop.
  std::unique_ptr<CProgress> StartProgress(const CString& title) override;
  CVexAppUtil* GetApp() override { return this; }
  CMainFrame* GetMainFrame() override { return this; }
  std::vector<HostFileType> ExtraFileTypes() const override;

  CStatusBar* GetStatusBar() override { return this; }
  void ToggleBarVisible(int, bool) override {}
  void RestoreViewLayout() override {}
  void AddToRecentFileList(const CString&) override {}
  void SetPaneText(int, const CString& text) override { status_ = text; }

  DisplaySettings GetDisplaySettings() const override { return {}; }
  void SetDisplaySettings(const DisplaySettings&) override {}
  // Waits for the engine, with its progress; Ctrl+C cancels the run.
  int RunServer(const char* syntaxPath, const char* outputPath, unsigned int server, int option1,
                int option2, int option3) override;
  // Prints a syntax or an output file.
  bool OpenDocumentFile(const CString& pathName) override;

 private:
  CHost* previous_;
  bool quiet_ = false;
  bool spoken_ = false;
  CString status_;
};
