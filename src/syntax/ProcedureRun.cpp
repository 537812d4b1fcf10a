#include "syntax/ProcedureRun.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <unistd.h>

#include <boost/format.hpp>

#include "datadoc/DataDoc.h"
#include "datadoc/VsfLayout.h"
#include "host/Host.h"
#include "host/Text.h"
#include "syntax/PathNames.h"
#include "syntax/SyntaxText.h"
#include "vexutils/BlockIo.h"
#include "vexutils/TempFile.h"

namespace {

constexpr std::string_view kDataExtension = ".VSF";
constexpr const char* kSyntaxExtension = ".TRK";
constexpr const char* kOutputExtension = ".OUT";

// The last four arguments of RunServer for a screening run.
constexpr unsigned int kScreeningServer = 1;

void WriteStatus(const CString& text) {
  CMainFrame* const frame = APPUTIL_GetMainFrame();
  CStatusBar* const bar = frame != nullptr ? frame->GetStatusBar() : nullptr;
  if (bar != nullptr) bar->SetPaneText(0, text);
}

// By name, or by device and inode where both exist.
bool IsSameFile(const CString& a, const CString& b) {
  std::error_code error;
  return a == b || std::filesystem::equivalent(a, b, error);
}

bool IsFile(const CString& name) {
  std::error_code error;
  return std::filesystem::is_regular_file(name, error);
}

// The names that a run derives from the data file's.
struct RunPaths {
  CString data;
  CString syntax;
  CString output;

  explicit RunPaths(const CString& dataFile)
      : data(dataFile),
        syntax(ReplaceExtension(data, kSyntaxExtension)),
        output(ReplaceExtension(syntax, kOutputExtension)) {}
};

bool Refuse(const CString& message) {
  AfxMessageBox(message);
  return false;
}

// Nothing that a run writes may take the data file's place, and the run must read that very file.
bool AreSafe(const RunPaths& paths) {
  if (IsSameFile(paths.syntax, paths.data) || IsSameFile(paths.output, paths.data)) {
    return Refuse("The syntax or the output file would take the place of the data file:\n" +
                  paths.data);
  }
  const CString named = ReplaceExtension(paths.syntax, kDataExtension);
  if (named != paths.data && IsFile(named) && !IsSameFile(named, paths.data)) {
    return Refuse(boost::str(
        boost::format("The run would read %1% instead of %2%. Please rename one of them.") % named %
        paths.data));
  }
  return true;
}

// A data set, whatever its name says? A syntax of the user's may read one that is called .OUT.
bool IsSystemFile(const CString& name) {
  CDescriptor file;
  std::array<char, kVsfHeaderWordBytes> word{};
  return IsFile(name) && file.OpenForReading(name.c_str()) &&
         ReadAt(file.Get(), 0, word.data(), word.size()) > 0 &&
         FindVsfHeaderWord({word.data(), word.size()}) != nullptr;
}

// Removes what an earlier run left. False, with the reason on the status bar, when it is still
// there: it must not be taken for this run's.
bool RemoveOld(const CString& fileName) {
  if (IsSystemFile(fileName)) {
    WriteStatus(fileName + " is a data file; the run did not replace it");
    return false;
  }
  if (unlink(fileName.c_str()) == 0 || errno == ENOENT) return true;
  WriteStatus(fileName + ": " + std::strerror(errno));
  return false;
}

bool WriteNewSyntax(CDataDoc& document, const CString& syntaxFile, ProcedureJob& job,
                    const CString& dataText) {
  errno = 0;
  document.BuildTORVIKSyntax(&job.lines, syntaxFile.c_str(),
                             dataText.empty() ? nullptr : dataText.c_str(), 1, job.repetitions,
                             job.rewind, 0);
  if (IsFile(syntaxFile)) return true;
  WriteStatus(syntaxFile + ": " + std::strerror(errno));
  return false;
}

int RunEngineOn(const CString& syntaxFile, const CString& outputFile) {
  CVexAppUtil* const app = APPUTIL_GetApp();
  if (app == nullptr) return -1;
  const int result =
      app->RunServer(syntaxFile.c_str(), outputFile.c_str(), kScreeningServer, 0, 0, 0);
  return result >= 0 && IsFile(outputFile) ? result : -1;
}

ProcedureResult TellNoOutput(const char* message) {
  AfxMessageBox(message);
  return {ProcedureState::Failed, -1};
}

// Everything after the dialog.
ProcedureResult Perform(CDataDoc& document, ProcedureAction action, ProcedureJob job,
                        const CString& dataText) {
  const RunPaths paths(document.GetPathName());
  const bool written = RemoveOld(paths.syntax) && RemoveOld(paths.output) &&
                       WriteNewSyntax(document, paths.syntax, job, dataText);
  if (action == ProcedureAction::Run) {
    return written ? RunSyntaxFile(paths.syntax, job.noOutput) : TellNoOutput(job.noOutput);
  }
  if (!written) return TellNoOutput("Cannot write to file!");
  if (CVexAppUtil* const app = APPUTIL_GetApp()) app->OpenDocumentFile(paths.syntax);
  return {ProcedureState::SyntaxShown, -1};
}

bool MayRun(const CDataDoc& document) {
  return IsSavedForRun(document) && AreSafe(RunPaths(document.GetPathName()));
}

// A temporary file's name; the file is removed at the end.
class TemporaryName {
 public:
  TemporaryName() : name_(GetTempName("VS")) {}
  ~TemporaryName() {
    if (!name_.empty()) std::remove(name_.c_str());
  }
  TemporaryName(const TemporaryName&) = delete;
  TemporaryName& operator=(const TemporaryName&) = delete;
  const CString& Get() const { return name_; }

 private:
  CString name_;
};

}  // namespace

ProcedureAction ActionOfEndCode(int endCode) {
  switch (endCode) {
    case kEndRun:
      return ProcedureAction::Run;
    case kEndSyntax:
      return ProcedureAction::SyntaxOnly;
    default:
      return ProcedureAction::Nothing;
  }
}

ProcedureJob JobOfLines(CDataDoc& document, CStringList lines, const CString& outputParts) {
  ProcedureJob job;
  job.lines = std::move(lines);
  CString outputLine;
  document.GetOUString(document.GetOutputOptions(), outputLine, 1);
  job.lines.push_back(outputLine + outputParts);
  return job;
}

bool CanRunProcedure(const CDataDoc& document, bool needsOrdinal) {
  return document.GetVarnum() > 0 && document.HoldsRawData() &&
         (!needsOrdinal || document.GetVarType() == 1);
}

bool IsSavedForRun(const CDataDoc& document) {
  const std::string_view path = document.GetPathName();
  const std::size_t bytes = kDataExtension.size();
  const bool systemFile =
      path.size() >= bytes && EqualIgnoringCase(path.substr(path.size() - bytes), kDataExtension);
  if (!document.IsModified() && systemFile) return true;
  if (!path.empty() && !systemFile) {
    document.WriteStatusInfo(document.GetPathName() + " is no system data file (*.VSF)");
  }
  return Refuse(kNotSaved);
}

ProcedureResult RunProcedure(CDataDoc& document, const std::function<int()>& showDialog,
                             const std::function<ProcedureJob()>& collect) {
  if (!MayRun(document)) return {};
  const ProcedureAction action = ActionOfEndCode(showDialog());
  if (action == ProcedureAction::Nothing) return {ProcedureState::NotWanted, -1};
  return Perform(document, action, collect(), {});
}

ProcedureResult RunContentsListing(CDataDoc& document) {
  if (!MayRun(document)) return {};
  const TemporaryName dataText;
  if (dataText.Get().empty()) {
    AfxMessageBox("Unable to produce temporary file!");
    return {};
  }
  if (!document.CopyDataToAscii(dataText.Get())) return {};
  ProcedureJob job;
  job.lines = {"OU XM"};
  job.repetitions = kContentsListing;
  return Perform(document, ProcedureAction::Run, std::move(job), dataText.Get());
}

ProcedureResult RunSyntaxFile(const CString& syntaxFile, const char* noOutput) {
  const CString outputFile = ReplaceExtension(syntaxFile, kOutputExtension);
  if (IsSameFile(outputFile, syntaxFile)) {
    AfxMessageBox("The output file would take the place of the syntax file:\n" + syntaxFile);
    return {};
  }
  if (!RemoveOld(outputFile)) return TellNoOutput(noOutput);
  const int result = RunEngineOn(syntaxFile, outputFile);
  if (result < 0) return TellNoOutput(noOutput);
  APPUTIL_GetApp()->OpenDocumentFile(outputFile);
  return {ProcedureState::Done, result};
}
