// Importing a foreign file of many cases with vexdata, as a whole process, compared with other
// programs that read the same file, where they are installed: R's foreign (to a binary matrix;
// .sav) and readstat (to csv). The floor reads the file's bytes and writes as many as the result
// has.
//
//   bench_import FILE... [--vexdata PROGRAM] [--folder FOLDER] [--runs N]
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>

#include <CLI/CLI.hpp>

#include "Bench.h"

namespace {

struct Options {
  std::vector<std::string> files;
  std::string vexdata;
  std::string folder = ".";
  int runs = 3;
};

struct Measure {
  double seconds = 0;
  double processor = 0;
  double memory = 0;  // MiB, highest resident size
};

// Runs a command with its output thrown away; empty when it is not installed or fails.
std::optional<Measure> Time(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  std::fflush(stdout);  // the child would print it again
  const bench::CTimer timer;
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

std::optional<Measure> MedianOf(int runs, const std::vector<std::string>& words,
                                const std::string& result) {
  std::vector<double> seconds, processor;
  double memory = 0;
  for (int run = 0; run < runs; ++run) {
    unlink(result.c_str());
    bench::Settle(std::int64_t{512} << 20);
    const auto measure = Time(words);
    if (!measure) return std::nullopt;
    seconds.push_back(measure->seconds);
    processor.push_back(measure->processor);
    memory = std::max(memory, measure->memory);
  }
  return Measure{bench::Median(seconds), bench::Median(processor), memory};
}

double Floor(const std::string& from, const std::string& to, std::uintmax_t bytes) {
  std::vector<char> block(1 << 20);
  const bench::CTimer timer;
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

void Print(const std::string& what, const std::optional<Measure>& measure, double floor) {
  if (!measure) {
    std::printf("  %-28s not installed, or it failed\n", what.c_str());
    return;
  }
  std::printf("  %-28s %6.2f s  processor %6.2f s  peak %6.1f MiB  %5.1f x floor\n", what.c_str(),
              measure->seconds, measure->processor, measure->memory, measure->seconds / floor);
}

int Run(const Options& options) {
  const std::string target = options.folder + "/bench_import.VSF";
  const std::string other = options.folder + "/bench_import.out";
  const std::string toMatrix =
      "d <- as.data.frame(foreign::read.spss(commandArgs(TRUE)[1], use.value.labels = FALSE));"
      "con <- file(commandArgs(TRUE)[2], 'wb'); n <- nrow(d);"
      "for (s in seq.int(1L, n, by = 100000L)) { e <- min(n, s + 99999L);"
      "m <- vapply(d, function(x) as.double(x[s:e]), numeric(e - s + 1L)); "
      "writeBin(as.vector(t(m)), con) };"
      "close(con)";
  const auto start = Time({options.vexdata, "--version"});
  if (!start) throw std::runtime_error("cannot run " + options.vexdata);
  std::printf("vexdata's own start: %.3f s, peak %.1f MiB\n", start->seconds, start->memory);
  for (const std::string& file : options.files) {
    const auto ours = MedianOf(
        options.runs, {options.vexdata, "import", file, target, "--overwrite", "--quiet"}, target);
    if (!ours) throw std::runtime_error("vexdata does not import " + file);
    const double floor = Floor(file, other, std::filesystem::file_size(target));
    std::printf("%s (%.0f MB to %.0f MB), floor %.2f s\n", file.c_str(),
                static_cast<double>(std::filesystem::file_size(file)) / 1e6,
                static_cast<double>(std::filesystem::file_size(target)) / 1e6, floor);
    Print("vexdata import", ours, floor);
    if (file.ends_with(".sav")) {
      Print("R foreign to binary matrix",
            MedianOf(options.runs, {"Rscript", "-e", toMatrix, file, other}, other), floor);
    }
    const std::string csv = other + ".csv";
    Print("readstat to csv", MedianOf(1, {"readstat", file, csv}, csv), floor);
    unlink(csv.c_str());
  }
  unlink(target.c_str());
  unlink(other.c_str());
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  options.vexdata = (std::filesystem::path(argv[0]).parent_path() / "vexdata").string();
  CLI::App app{"Importing against other programs"};
  app.add_option("FILE", options.files)->required();
  app.add_option("--vexdata", options.vexdata);
  app.add_option("--folder", options.folder);
  app.add_option("--runs", options.runs);
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] { return Run(options); });
}
