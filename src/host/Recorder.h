// A host for tests: it answers from a script and remembers what it was asked.
#pragma once

#include <deque>
#include <map>
#include <optional>

#include "host/Host.h"

class CRecorder final : public CHost, public CMainFrame, public CStatusBar, public CVexAppUtil {
 public:
  // Installs itself; the host that was there before comes back at the end.
  CRecorder();
  ~CRecorder() override;

  struct Message {
    CString text;
    CString title;
    MessageButtons buttons;
  };
  std::vector<Message> messages;
  std::deque<MessageAnswer> answers;  // taken from the front for Yes/No questions; No when empty
  CString LastMessage() const { return messages.empty() ? CString() : messages.back().text; }

  std::vector<FileDialogRequest> dialogs;
  std::deque<std::optional<FileDialogChoice>>
      choices;  // from the front; nullopt or empty: cancelled

  std::vector<CString> statusTexts;  // what pane 0 was given, in order
  bool hasStatusBar = true;
  std::vector<CString> recentFiles;
  std::map<int, bool> bars;
  int layoutsRestored = 0;

  int waitCursors = 0;  // begun and not yet ended
  int waitCursorsEver = 0;
  std::vector<CString> progressTitles;
  int progressSteps = 0;
  int cancelAtStep = -1;  // the step at which progress asks to stop; -1: never
  std::vector<HostFileType> extraFileTypes;

  DisplaySettings display;
  int engineResult = 0;
  std::vector<std::pair<CString, CString>> engineRuns;

  MessageAnswer ShowMessage(const CString& text, const CString& title,
                            MessageButtons buttons) override;
  void BeginWaitCursor() override;
  void EndWaitCursor() override { --waitCursors; }
  bool AskForFile(const FileDialogRequest& request, FileDialogChoice& choice) override;
  std::unique_ptr<CProgress> StartProgress(const CString& title) override;
  CVexAppUtil* GetApp() override { return this; }
  CMainFrame* GetMainFrame() override { return this; }
  std::vector<HostFileType> ExtraFileTypes() const override { return extraFileTypes; }

  CStatusBar* GetStatusBar() override { return hasStatusBar ? this : nullptr; }
  void ToggleBarVisible(int bar, bool visible) override { bars[bar] = visible; }
  void RestoreViewLayout() override { ++layoutsRestored; }
  void AddToRecentFileList(const CString& pathName) override { recentFiles.push_back(pathName); }
  void SetPaneText(int pane, const CString& text) override;

  DisplaySettings GetDisplaySettings() const override { return display; }
  void SetDisplaySettings(const DisplaySettings& settings) override { display = settings; }
  int RunServer(const CString& syntaxFile, const CString& outputFile) override;

 private:
  CHost* previous_;
};
