#include "host/Recorder.h"

#include <fstream>

namespace {

class RecordedProgress final : public CProgress {
 public:
  explicit RecordedProgress(CRecorder& recorder) : recorder_(recorder) {}
  bool Advance(double) override { return recorder_.progressSteps++ != recorder_.cancelAtStep; }

 private:
  CRecorder& recorder_;
};

}  // namespace

CRecorder::CRecorder() : previous_(InstallHost(this)) {}

CRecorder::~CRecorder() {
  InstallHost(previous_);
}

MessageAnswer CRecorder::ShowMessage(const CString& text, const CString& title,
                                     MessageButtons buttons) {
  messages.push_back({text, title, buttons});
  if (buttons == MessageButtons::Ok) return MessageAnswer::Ok;
  if (answers.empty()) return MessageAnswer::No;
  const MessageAnswer answer = answers.front();
  answers.pop_front();
  return answer;
}

void CRecorder::BeginWaitCursor() {
  ++waitCursors;
  ++waitCursorsEver;
}

bool CRecorder::AskForFile(const FileDialogRequest& request, FileDialogChoice& choice) {
  dialogs.push_back(request);
  if (choices.empty()) return false;
  const std::optional<FileDialogChoice> answer = choices.front();
  choices.pop_front();
  if (!answer) return false;
  choice = *answer;
  return true;
}

std::unique_ptr<CProgress> CRecorder::StartProgress(const CString& title) {
  progressTitles.push_back(title);
  return std::make_unique<RecordedProgress>(*this);
}

void CRecorder::SetPaneText(int pane, const CString& text) {
  if (pane == 0) statusTexts.push_back(text);
}

int CRecorder::RunServer(const char* syntaxPath, const char* outputPath, unsigned int server,
                         int option1, int option2, int option3) {
  engineRuns.push_back({syntaxPath, outputPath, {server, option1, option2, option3}});
  if (onEngineRun) onEngineRun();
  if (engineResult >= 0 && engineOutput) {
    std::ofstream(outputPath, std::ios::binary) << *engineOutput;
  }
  return engineResult;
}
