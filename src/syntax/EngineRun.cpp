#include "syntax/EngineRun.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <unistd.h>

#include "host/Host.h"
#include "syntax/EngineProcess.h"

namespace {

CString BesideProgram() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? CString() : (program.parent_path() / "torvik").string();
}

CString NamedEngine(const CString& setting) {
  const char* const chosen = std::getenv("VEX_ENGINE");
  if (chosen != nullptr && *chosen != '\0') return chosen;
  return setting.empty() ? BesideProgram() : setting;
}

}  // namespace

bool CanBeRun(const CString& engine, CString& reason) {
  std::error_code error;
  if (std::filesystem::is_directory(engine, error)) {
    errno = EISDIR;
  } else if (access(engine.c_str(), X_OK) == 0) {
    return true;
  }
  reason = "The engine " + engine + " cannot be run: " + std::strerror(errno);
  return false;
}

CString FindEngine(const CString& setting, CString& reason) {
  CString engine = NamedEngine(setting);
  return CanBeRun(engine, reason) ? engine : CString();
}

int RunEngine(const CString& engine, const CString& syntaxFile, const CString& outputFile,
              const CString& folder, CProgress& progress, CString& reason) {
  constexpr int kMilliseconds = 40;  // between two looks at the progress
  CEngineProcess process;
  process.SetFolder(folder);
  if (process.Start(engine, syntaxFile, outputFile)) {
    while (process.Wait(kMilliseconds)) {
      if (!progress.Advance(process.Progress())) process.Cancel();
    }
  }
  reason = process.Reason();
  return process.Result();
}
