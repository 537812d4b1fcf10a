#include "vexdata/TerminalHost.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <unistd.h>
#include <utility>
#include <vector>

#include "host/Text.h"
#include "syntax/EngineRun.h"
#include "transfer/ProgramFileTypes.h"
#include "vexutils/BlockIo.h"
#include "vexutils/TickCount.h"

namespace {

// Each of these ends long work in order, so that no half-written file is left.
constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t interrupted = 0;

void OnInterrupt(int) {
  interrupted = 1;
}

class TerminalProgress final : public CProgress {
 public:
  TerminalProgress(CString title, bool visible) : title_(std::move(title)), visible_(visible) {
    interrupted = 0;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      previousHandlers_[i] = std::signal(kSignals[i], OnInterrupt);
    }
  }
  ~TerminalProgress() override {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      std::signal(kSignals[i], previousHandlers_[i]);
    }
    if (drawn_) std::fputs("\r\033[K", stderr);
  }
  TerminalProgress(const TerminalProgress&) = delete;
  TerminalProgress& operator=(const TerminalProgress&) = delete;

  bool Advance(double fraction) override {
    constexpr std::int64_t kMilliseconds = 100;
    if (visible_ && GetTickCount() - last_ >= kMilliseconds) Draw(fraction);
    return interrupted == 0;
  }

 private:
  void Draw(double fraction) {
    constexpr int kCells = 30;
    last_ = GetTickCount();
    drawn_ = true;
    if (fraction < 0) {
      std::fprintf(stderr, "\r\033[K%s ...", title_.c_str());
      return;
    }
    const double part = std::clamp(fraction, 0.0, 1.0);
    const auto filled = static_cast<std::size_t>(part * kCells);
    const CString bar = CString(filled, '#') + CString(kCells - filled, '.');
    std::fprintf(stderr, "\r\033[K[%s] %3d %%  %s", bar.c_str(), static_cast<int>(part * 100),
                 title_.c_str());
  }

  CString title_;
  bool visible_;
  bool drawn_ = false;
  std::int64_t last_ = GetTickCount();  // quick work shows no bar
  std::array<void (*)(int), kSignals.size()> previousHandlers_{};
};

// Messages may quote what a file holds: line ends and what a terminal would obey become blanks.
CString OneLine(CString text) {
  constexpr char kDelete = 0x7F;
  std::replace_if(
      text.begin(), text.end(),
      [](char c) { return static_cast<unsigned char>(c) < ' ' || c == kDelete; }, ' ');
  return text;
}

}  // namespace

CTerminalHost::CTerminalHost() : previous_(InstallHost(this)) {}

CTerminalHost::~CTerminalHost() {
  InstallHost(previous_);
}

MessageAnswer CTerminalHost::ShowMessage(const CString& text, const CString&,
                                         MessageButtons buttons) {
  spoken_ = true;
  const CString reason = status_.empty() ? CString() : " (" + std::exchange(status_, {}) + ')';
  std::cerr << "vexdata: " << OneLine(text + reason) << '\n';
  return buttons == MessageButtons::YesNo ? MessageAnswer::No : MessageAnswer::Ok;
}

void CTerminalHost::ShowNote(const CString& text) {
  if (!quiet_) std::cerr << "note: " << OneLine(text) << '\n';
}

std::unique_ptr<CProgress> CTerminalHost::StartProgress(const CString& title) {
  return std::make_unique<TerminalProgress>(title, !quiet_ && isatty(STDERR_FILENO) != 0);
}

std::vector<HostFileType> CTerminalHost::ExtraFileTypes() const {
  return ProgramFileTypes();
}

int CTerminalHost::RunServer(const char* syntaxPath, const char* outputPath, unsigned int, int, int,
                             int) {
  const CString engine = FindEngine({}, status_);
  if (engine.empty()) return -1;
  const auto progress = StartProgress(CString("Running ") + syntaxPath);
  return RunEngine(engine, syntaxPath, outputPath, {}, *progress, status_);
}

bool CTerminalHost::OpenDocumentFile(const CString& pathName) {
  CDescriptor file;
  std::vector<char> block(kBlockBytes);
  std::int64_t offset = 0;
  std::int64_t got = file.OpenForReading(pathName.c_str()) ? 1 : -1;
  while (got > 0) {
    got = ReadAt(file.Get(), offset, block.data(), block.size());
    const auto bytes = static_cast<std::size_t>(std::max<std::int64_t>(got, 0));
    if (std::fwrite(block.data(), 1, bytes, stdout) != bytes) got = -1;
    offset += got;
  }
  if (got == 0 && std::fflush(stdout) == 0) return true;
  if (errno != EPIPE) AfxMessageBox(pathName + ": " + std::strerror(errno));
  return false;
}
