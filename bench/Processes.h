// Whole programs against each other: time, processor time and memory of a command, and the floor
// below which no program comes.
#pragma once

#include <cstdio>
#include <fstream>
#include <optional>

#include "Bench.h"

namespace bench {

struct Measure {
  double seconds = 0;
  double processor = 0;
  double memory = 0;  // MiB, highest resident size
};

// Runs a command with its output thrown away; empty when it is not installed or fails.
inline std::optional<Measure> Time(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  std::fflush(stdout);  // the child would print it again
  const CTimer timer;
  const pid_t child = fork();
  if (child == 0) {
    if (std::freopen("/dev/null", "w", stdout) == nullptr ||
        std::freopen("/dev/null", "w", stderr) == nullptr) {
      _exit(127);
    }
    execvp(arguments[0], arguments.data());
    _exit(127);
  }
  int status = 1;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child || status != 0) return std::nullopt;
  const auto seconds = [](const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
  };
  return Measure{timer.Seconds(), seconds(usage.ru_utime) + seconds(usage.ru_stime),
                 static_cast<double>(usage.ru_maxrss) / 1024};
}

// The median of several runs, each with the result removed and the machine settled before it.
inline std::optional<Measure> MedianOf(int runs, const std::vector<std::string>& words,
                                       const std::string& result) {
  std::vector<double> seconds, processor;
  double memory = 0;
  for (int run = 0; run < runs; ++run) {
    unlink(result.c_str());
    Settle(std::int64_t{512} << 20);
    const auto measure = Time(words);
    if (!measure) return std::nullopt;
    seconds.push_back(measure->seconds);
    processor.push_back(measure->processor);
    memory = std::max(memory, measure->memory);
  }
  return Measure{Median(seconds), Median(processor), memory};
}

// Reads the bytes of a file, looks at each and writes as many as the result has.
inline double Floor(const std::string& from, const std::string& to, std::uintmax_t bytes) {
  std::vector<char> block(1 << 20);
  const CTimer timer;
  std::ifstream in(from, std::ios::binary);
  std::uint64_t sum = 0;
  while (in.read(block.data(), static_cast<std::streamsize>(block.size())) || in.gcount() > 0) {
    for (std::streamsize i = 0; i < in.gcount(); ++i)
      sum += static_cast<unsigned char>(block[static_cast<std::size_t>(i)]);
  }
  std::ofstream out(to, std::ios::binary);
  for (std::uintmax_t left = bytes; left > 0;) {
    const std::uintmax_t part = std::min<std::uintmax_t>(left, block.size());
    out.write(block.data(), static_cast<std::streamsize>(part));
    left -= part;
  }
  block[0] = static_cast<char>(sum);  // the sum counts as used
  return timer.Seconds();
}

inline void Print(const std::string& what, const std::optional<Measure>& measure, double floor) {
  if (!measure) {
    std::printf("  %-28s not installed, or it failed\n", what.c_str());
    return;
  }
  std::printf("  %-28s %6.2f s  processor %6.2f s  peak %6.1f MiB  %5.1f x floor\n", what.c_str(),
              measure->seconds, measure->processor, measure->memory, measure->seconds / floor);
}

}  // namespace bench
