// What the benchmark programs share: time, memory, and the copy of a file that results are compared
// with.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>

namespace bench {

class CTimer {
 public:
  double Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

inline double Median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// Elapsed and processor time of a step.
struct Seconds {
  double elapsed = 0;
  double cpu = 0;
};

inline Seconds Median(const std::vector<Seconds>& steps) {
  std::vector<double> elapsed;
  std::vector<double> cpu;
  for (const Seconds& step : steps) {
    elapsed.push_back(step.elapsed);
    cpu.push_back(step.cpu);
  }
  return {Median(elapsed), Median(cpu)};
}

// Processor time, user and system, of this process (RUSAGE_SELF) or of the commands that it ran and
// waited for (RUSAGE_CHILDREN). Unlike elapsed time it hardly changes when the machine has other
// work.
inline double CpuSeconds(int who) {
  rusage usage{};
  getrusage(who, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// A line of /proc/self/status in MiB: "VmHWM" is the highest resident size, mapped file pages
// included, "RssAnon" the memory of the process's own at this moment.
inline double StatusMiB(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(name + ":", 0) == 0) return std::stod(line.substr(name.size() + 1)) / 1024;
  }
  return 0;
}

// The highest RssAnon between construction and Stop, above what it was at the start. The system
// keeps no high-water mark of it, so a thread looks every two milliseconds.
class COwnMemory {
 public:
  COwnMemory() : start_(StatusMiB("RssAnon")), watcher_([this] { Watch(); }) {}
  ~COwnMemory() { Stop(); }
  COwnMemory(const COwnMemory&) = delete;
  COwnMemory& operator=(const COwnMemory&) = delete;

  double Stop() {
    stop_ = true;
    if (watcher_.joinable()) watcher_.join();
    return highest_ - start_;
  }

 private:
  void Watch() {
    while (!stop_) {
      highest_ = std::max(highest_, StatusMiB("RssAnon"));
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }

  double start_;
  double highest_ = 0;
  std::atomic<bool> stop_{false};
  std::thread watcher_;
};

// Ends the program when the command cannot be run or fails.
inline void RunCommand(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t child = 0;
  int status = 1;
  if (posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0 ||
      waitpid(child, &status, 0) != child || status != 0) {
    throw std::runtime_error("cannot run " + words[0]);
  }
}

// Touches `bytes` of memory and gives them back, in a process of its own. Free memory of a virtual
// machine may have to be fetched from the host page by page; without this the step that happens to
// use it first would pay for that, the copy or what is compared.
inline void WarmFreeMemory(std::int64_t bytes) {
  const pid_t child = fork();
  if (child == 0) {
    mmap(nullptr, static_cast<std::size_t>(bytes), PROT_READ | PROT_WRITE,
         MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
    _exit(0);
  }
  if (child > 0) waitpid(child, nullptr, 0);
}

// Brings the machine into the same state before each step: nothing of earlier ones is left to be
// written, and `bytes` of free memory are at hand.
inline void Settle(std::int64_t bytes) {
  sync();
  WarmFreeMemory(bytes);
}

// Copies `from` to a new file `to` as `cp` does it, without sharing blocks.
inline Seconds CopyByCp(const std::string& from, const std::string& to) {
  unlink(to.c_str());
  Settle(2 * static_cast<std::int64_t>(std::filesystem::file_size(from)));
  const double before = CpuSeconds(RUSAGE_CHILDREN);
  const CTimer timer;
  RunCommand({"cp", "--reflink=never", from, to});
  return {timer.Seconds(), CpuSeconds(RUSAGE_CHILDREN) - before};
}

// Runs a benchmark's main function and turns what it throws into a message.
template <class Body>
int Main(Body body) {
  try {
    return body();
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
}

// Runs the body with the name of a new folder, which goes with what is in it, whatever happens.
template <class Body>
auto InNewFolder(const std::string& name, Body body) {
  struct Folder {
    explicit Folder(const std::string& stem)
        : path(std::filesystem::temp_directory_path() / (stem + "." + std::to_string(getpid()))) {
      std::filesystem::create_directory(path);
    }
    ~Folder() {
      std::error_code ignored;
      std::filesystem::remove_all(path, ignored);
    }
    std::filesystem::path path;
  };
  const Folder folder(name);
  return body(folder.path.string());
}

}  // namespace bench
