// A host for tests: it answers from a script and remembers what it was asked.
#pragma once

#include <array>
#include <deque>
#include <functional>
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
  // The engine: what it was asked, and what it does. A run that is not negative leaves an output
  // file with `engineOutput`.
  struct EngineRun {
    CString syntaxFile;
    CString outputFile;
    std::array<long, 4> arguments;
  };
  std::vector<EngineRun> engineRuns;
  int engineResult = 0;
  std::optional<CString> engineOutput = CString();  // nullopt: it writes none
  std::function<void()> onEngineRun;                // called while it "runs"
  std::vector<CString> openedDocuments;

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
  int RunServer(const char* syntaxPath, const char* outputPath, unsigned int server, int option1,
                int option2, int option3) override;
  bool OpenDocumentFile(const CString& pathName) override {
    openedDocuments.push_back(pathName);
    return true;
  }

 private:
  CHost* previous_;
};
