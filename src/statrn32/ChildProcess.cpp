#include "statrn32/ChildProcess.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <new>
#include <poll.h>
#include <unistd.h>
#include <utility>

#include <sys/resource.h>
#include <sys/wait.h>

#include "vexutils/BlockIo.h"

namespace statrn32 {
namespace {

enum EXIT_CODE { kDone = 0, kThrew = 90, kNoMemory = 91 };

// Where a sanitizer looks on, the child's complaints are kept.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kQuiet = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kQuiet = false;
#else
constexpr bool kQuiet = true;
#endif
#else
constexpr bool kQuiet = true;
#endif

bool isChild = false;

// The address space that this process takes now.
std::int64_t MemoryNow() {
  long pages = 0;
  std::FILE* const file = std::fopen("/proc/self/statm", "r");
  if (file == nullptr) return -1;
  if (std::fscanf(file, "%ld", &pages) != 1) pages = -1;
  std::fclose(file);
  return pages < 0 ? -1 : pages * sysconf(_SC_PAGESIZE);
}

void Limit(int resource, rlim_t most) {
  rlimit limit{};
  if (getrlimit(static_cast<__rlimit_resource_t>(resource), &limit) != 0) return;
  limit.rlim_cur = std::min(most, limit.rlim_max);
  setrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
}

// Nothing of this process's files, signals and windows is left to the child but its pipe.
int Isolate(int pipe) {
  constexpr int kPlace = 3;
  for (const int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGPIPE, SIGINT, SIGTERM,
                           SIGHUP, SIGXCPU, SIGALRM}) {
    std::signal(signal, SIG_DFL);
  }
  if (pipe != kPlace) dup2(pipe, kPlace);
  close_range(kPlace + 1, ~0U, 0);
  const int nowhere = open("/dev/null", O_RDWR);
  dup2(nowhere, STDIN_FILENO);
  if (kQuiet) {
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
  }
  if (nowhere > kPlace) close(nowhere);
  return kPlace;
}

[[noreturn]] void RunChild(const std::function<void(CPipeWriter*)>& work, int pipe,
                           std::int64_t memory, int seconds) {
  isChild = true;
  CPipeWriter out(Isolate(pipe));
  Limit(RLIMIT_CORE, 0);
  Limit(RLIMIT_CPU, static_cast<rlim_t>(seconds));
  const std::int64_t now = MemoryNow();
  if (now > 0) Limit(RLIMIT_AS, static_cast<rlim_t>(now + memory));
  try {
    work(&out);
  } catch (const std::bad_alloc&) {
    _exit(kNoMemory);
  } catch (...) {
    _exit(kThrew);
  }
  _exit(kDone);
}

std::string HowEnded(int status) {
  if (WIFSIGNALED(status)) {
    if (WTERMSIG(status) == SIGXCPU) return "its reading found no end";
    return "its reading was stopped by a fault";
  }
  const int code = WEXITSTATUS(status);
  if (code == kNoMemory) return "its reading asks for more memory than a file of its size needs";
  return code == kDone ? "" : "its reading was stopped by a fault";
}

}  // namespace

bool CPipeWriter::Write(const void* data, std::size_t size) {
  const char* from = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t done = write(descriptor_, from, size);
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) return false;
    from += done;
    size -= static_cast<std::size_t>(done);
  }
  return true;
}

bool CChildProcess::IsChild() {
  return isChild;
}

bool CChildProcess::Start(const std::function<void(CPipeWriter*)>& work, std::int64_t memory,
                          int seconds) {
  End();
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  child_ = fork();
  if (child_ == 0) RunChild(work, ends[1], memory, seconds);
  close(ends[1]);
  if (child_ > 0) {
    pipe_ = ends[0];
    return true;
  }
  close(ends[0]);
  return false;
}

bool CChildProcess::Read(void* data, std::size_t size) {
  constexpr int kPatience = 120'000;  // milliseconds without a byte
  char* to = static_cast<char*>(data);
  while (size > 0) {
    pollfd wait{pipe_, POLLIN, 0};
    const int ready = poll(&wait, 1, kPatience);
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return false;
    const ssize_t got = read(pipe_, to, size);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    to += got;
    size -= static_cast<std::size_t>(got);
  }
  return true;
}

std::string CChildProcess::End() {
  if (child_ < 0) return {};
  // Closed by the child itself, the pipe is at its end: then it is ending by itself.
  pollfd look{pipe_, POLLIN, 0};
  const bool ending = poll(&look, 1, 0) > 0 && (look.revents & (POLLIN | POLLHUP)) == POLLHUP;
  if (!ending) kill(child_, SIGKILL);
  close(pipe_);
  int status = 0;
  while (waitpid(child_, &status, 0) < 0 && errno == EINTR) continue;
  child_ = -1;
  pipe_ = -1;
  return ending ? HowEnded(status) : std::string();
}

}  // namespace statrn32
