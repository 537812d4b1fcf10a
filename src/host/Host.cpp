#include "host/Host.h"

#include <iostream>

namespace {

class SilentProgress final : public CProgress {
 public:
  bool Advance(double) override { return true; }
};

// What stands in while no program has installed a host of its own.
class StandInHost final : public CHost {
 public:
  MessageAnswer ShowMessage(const CString& text, const CString&, MessageButtons buttons) override {
    std::cerr << text << '\n';
    return buttons == MessageButtons::YesNo ? MessageAnswer::No : MessageAnswer::Ok;
  }
  void BeginWaitCursor() override {}
  void EndWaitCursor() override {}
  bool AskForFile(const FileDialogRequest&, FileDialogChoice&) override { return false; }
  std::unique_ptr<CProgress> StartProgress(const CString&) override {
    return std::make_unique<SilentProgress>();
  }
  CVexAppUtil* GetApp() override { return nullptr; }
  CMainFrame* GetMainFrame() override { return nullptr; }
};

CHost* installedHost = nullptr;

}  // namespace

CHost& Host() {
  static StandInHost standIn;
  return installedHost != nullptr ? *installedHost : standIn;
}

CHost* InstallHost(CHost* host) {
  CHost* const previous = installedHost;
  installedHost = host;
  return previous;
}

MessageAnswer AfxMessageBox(const CString& text, MessageButtons buttons, const CString& title) {
  return Host().ShowMessage(text, title, buttons);
}
