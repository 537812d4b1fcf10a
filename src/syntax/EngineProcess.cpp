#include "syntax/EngineProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <spawn.h>
#include <unistd.h>

#include <sys/wait.h>

#include "host/Text.h"
#include "vexutils/TickCount.h"

extern char** environ;

namespace {

constexpr std::size_t kLongestLine = 500;                  // of what is kept
constexpr std::size_t kMostAtOnce = std::size_t{1} << 20;  // read in one Poll
constexpr int kSliceMilliseconds = 50;                     // between looks at a silent engine
constexpr int kSignalled = 128;

// The attributes and file actions of one start.
class SpawnSettings {
 public:
  SpawnSettings() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
  }
  ~SpawnSettings() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  // Standard error into `errorEnd`, nothing else of ours: a lock on an open file would be
  // inherited with it.
  void SetFiles(int errorEnd) {
    posix_spawn_file_actions_adddup2(&actions_, errorEnd, STDERR_FILENO);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
  }

  void SetFolder(const CString& folder) {
    posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
  }

  // A process group of its own, no blocked signal, none ignored that we may ignore.
  void SetSignals() {
    sigset_t none;
    sigset_t defaults;
    sigemptyset(&none);
    sigemptyset(&defaults);
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE, SIGCHLD}) {
      sigaddset(&defaults, signal);
    }
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &defaults);
    posix_spawnattr_setpgroup(&attributes_, 0);
    posix_spawnattr_setflags(
        &attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  }

  const posix_spawn_file_actions_t* Actions() const { return &actions_; }
  const posix_spawnattr_t* Attributes() const { return &attributes_; }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

CString Absolute(const CString& name) {
  std::error_code error;
  const auto path = std::filesystem::absolute(name, error);
  return error ? name : path.string();
}

bool IsFile(const CString& name) {
  std::error_code error;
  return std::filesystem::is_regular_file(name, error);
}

}  // namespace

CEngineProcess::~CEngineProcess() {
  if (child_ < 0) return;
  kill(-child_, SIGKILL);
  while (waitpid(child_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

bool CEngineProcess::Start(const CString& engine, const CString& syntaxFile,
                           const CString& outputFile) {
  syntaxFile_ = Absolute(syntaxFile);
  outputFile_ = Absolute(outputFile);
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    reason_ = engine + ": " + std::strerror(errno);
    return false;
  }
  said_.Take(ends[0]);
  const CDescriptor errorEnd(ends[1]);
  fcntl(said_.Get(), F_SETFL, O_NONBLOCK);  // our end alone: the engine's own writes wait
  return Spawn(engine, errorEnd.Get());
}

bool CEngineProcess::Spawn(const CString& engine, int errorEnd) {
  SpawnSettings settings;
  settings.SetFiles(errorEnd);
  settings.SetSignals();
  if (!folder_.empty()) settings.SetFolder(folder_);
  CString program = Absolute(engine);
  const std::array<char*, 4> arguments = {program.data(), syntaxFile_.data(), outputFile_.data(),
                                          nullptr};
  const int error = posix_spawn(&child_, program.c_str(), settings.Actions(), settings.Attributes(),
                                arguments.data(), environ);
  if (error == 0) return true;
  child_ = -1;
  said_.Close();
  reason_ = engine + ": " + std::strerror(error);
  return false;
}

bool CEngineProcess::Poll() {
  if (child_ < 0) return false;
  KillWhenDue();
  const bool ended = HasEnded();  // before reading: what it said last is then there to be read
  ReadWhatWasSaid();
  if (!ended) return true;
  // Whoever it left behind would go on writing.
  if (cancelled_) kill(-child_, SIGKILL);
  int status = 0;
  pid_t reaped = -1;
  do {
    reaped = waitpid(child_, &status, 0);
  } while (reaped < 0 && errno == EINTR);
  Finish(reaped < 0 ? 0 : status);
  return false;
}

bool CEngineProcess::Wait(int milliseconds) {
  const std::int64_t end = GetTickCount() + milliseconds;
  while (Poll()) {
    const auto left = static_cast<int>(end - GetTickCount());
    if (left <= 0) return true;
    pollfd wanted{said_.Get(), POLLIN, 0};
    if (poll(&wanted, 1, std::min(left, kSliceMilliseconds)) > 0) return Poll();
  }
  return false;
}

void CEngineProcess::Cancel(std::int64_t grace) {
  if (child_ < 0 || cancelled_) return;
  cancelled_ = true;
  killAt_ = GetTickCount() + grace;
  kill(-child_, SIGINT);
}

void CEngineProcess::KillWhenDue() {
  if (cancelled_ && GetTickCount() >= killAt_) kill(-child_, SIGKILL);
}

// Leaves it to be reaped, so that its number is not given to another process group.
bool CEngineProcess::HasEnded() {
  siginfo_t info{};
  if (waitid(P_PID, static_cast<id_t>(child_), &info, WEXITED | WNOHANG | WNOWAIT) != 0) {
    return errno != EINTR;
  }
  return info.si_pid == child_;
}

void CEngineProcess::ReadWhatWasSaid() {
  std::array<char, 16384> buffer;
  for (std::size_t total = 0; said_.IsOpen() && total < kMostAtOnce;) {
    const ssize_t got = read(said_.Get(), buffer.data(), buffer.size());
    if (got > 0) {
      TakeText(buffer.data(), static_cast<std::size_t>(got));
      total += static_cast<std::size_t>(got);
    } else if (got == 0 || (errno != EAGAIN && errno != EINTR)) {
      said_.Close();
    } else if (errno == EAGAIN) {
      return;
    }
  }
}

void CEngineProcess::TakeText(const char* text, std::size_t size) {
  for (const char* const end = text + size; text != end;) {
    const char* const lineEnd = std::find(text, end, '\n');
    const auto bytes = static_cast<std::size_t>(lineEnd - text);
    line_.append(text, std::min(bytes, kLongestLine - std::min(kLongestLine, line_.size())));
    if (lineEnd == end) return;
    TakeLine();
    text = lineEnd + 1;
  }
}

void CEngineProcess::TakeLine() {
  constexpr std::string_view kProgress = "progress:";
  constexpr double kWhole = 100;
  const std::string_view line = Trimmed(line_);
  if (line.substr(0, kProgress.size()) == kProgress) {
    const std::string_view number = Trimmed(line.substr(kProgress.size()));
    double percent = 0;
    const auto read = std::from_chars(number.data(), number.data() + number.size(), percent);
    if (read.ec == std::errc() && percent >= 0) progress_ = std::min(percent / kWhole, 1.0);
  } else if (!line.empty()) {
    lastLine_ = line;
  }
  line_.clear();
}

void CEngineProcess::Finish(int status) {
  child_ = -1;
  said_.Close();
  if (!line_.empty()) TakeLine();
  const bool signalled = WIFSIGNALED(status);
  const int code = signalled ? kSignalled + WTERMSIG(status) : WEXITSTATUS(status);
  const bool hasOutput = IsFile(outputFile_);
  result_ = hasOutput ? code : -1;
  if (cancelled_) {
    reason_ = "The run was cancelled";
  } else if (signalled) {
    reason_ = CString("The engine was ended by a signal: ") + strsignal(WTERMSIG(status));
  } else if (!hasOutput) {
    reason_ = "The engine ended with code " + std::to_string(code) + " and wrote no output";
  }
  if (!reason_.empty() && !lastLine_.empty()) reason_ += ": " + TextForDisplay(lastLine_);
}
