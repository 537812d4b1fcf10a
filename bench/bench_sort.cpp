// Sorts a file of cases with fqsort and compares the time with a plain copy of the same file, made
// just before each sort. The file is made here (the key in variable 0, the case's number in
// variable 1) or taken; it is copied and never changed.
//
//   bench_sort [--records N] [--variables N] [--file FILE] [--folder FOLDER] [--memory MIB]...
//   [--runs N]
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <random>

#include <CLI/CLI.hpp>

#include "Bench.h"
#include "vexutils/BlockIo.h"
#include "vexutils/FileSort.h"

namespace {

struct Options {
  std::string file;
  std::string folder = ".";
  std::int64_t records = 5'000'000;
  std::int64_t variables = 20;
  std::vector<std::size_t> memory = {kSortMemoryBytes >> 20, 32};  // MiB
  int runs = 3;
  bool cold = false;
};

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what + ": " + std::strerror(errno));
}

using FilePointer = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

FilePointer Open(const std::string& name, const char* mode) {
  FilePointer file(std::fopen(name.c_str(), mode), &std::fclose);
  if (!file) Fail(name);
  return file;
}

// Keys from 0 to 1,000,000 with a few equal ones, so that stability has something to keep.
void MakeFile(const std::string& name, const Options& options) {
  const FilePointer file = Open(name, "wb");
  std::mt19937_64 random(20);
  std::uniform_real_distribution<double> keys(0, 1e6);
  std::vector<double> record(static_cast<std::size_t>(options.variables));
  for (std::int64_t i = 0; i < options.records; ++i) {
    for (double& value : record) value = static_cast<double>(random() >> 40);
    record[0] = random() % 100 == 0 ? std::floor(keys(random)) : keys(random);
    if (record.size() > 1) record[1] = static_cast<double>(i);
    if (std::fwrite(record.data(), sizeof(double), record.size(), file.get()) != record.size())
      Fail(name);
  }
}

// Whether the keys ascend and, among equal keys, the case numbers.
void Check(const std::string& name, const Options& options) {
  const FilePointer file = Open(name, "rb");
  const auto variables = static_cast<std::size_t>(options.variables);
  std::vector<double> record(variables);
  std::vector<double> before(variables, -HUGE_VAL);
  std::int64_t records = 0;
  for (; std::fread(record.data(), sizeof(double), variables, file.get()) == variables; ++records) {
    if (std::lexicographical_compare(record.begin(), record.begin() + 2, before.begin(),
                                     before.begin() + 2)) {
      throw std::runtime_error("the result is not sorted");
    }
    record.swap(before);
  }
  if (records != options.records) throw std::runtime_error("the result has lost records");
}

// Takes the file's pages out of memory.
void MakeCold(const std::string& name) {
  CDescriptor file;
  if (!file.OpenForReading(name.c_str())) Fail(name);
  sync();
  posix_fadvise(file.Get(), 0, 0, POSIX_FADV_DONTNEED);
}

struct Result {
  std::vector<bench::Seconds> copies;
  std::vector<bench::Seconds> sorts;
  double ownMiB = 0;
};

void Measure(const std::string& source, const std::string& target, std::size_t memoryMiB,
             const Options& options, Result& result) {
  result.copies.push_back(bench::CopyByCp(source, target));
  bench::Settle(2 * static_cast<std::int64_t>(std::filesystem::file_size(source)));
  if (options.cold) MakeCold(target);
  bench::COwnMemory own;
  const double before = bench::CpuSeconds(RUSAGE_SELF);
  const bench::CTimer timer;
  {
    const FilePointer file = Open(target, "r+b");
    const auto recordBytes = static_cast<std::size_t>(options.variables) * sizeof(double);
    if (fqsortWithin(memoryMiB << 20, file.get(), options.records, recordBytes, 0,
                     kSortAscending) != 1) {
      Fail("fqsort");
    }
  }
  result.sorts.push_back({timer.Seconds(), bench::CpuSeconds(RUSAGE_SELF) - before});
  result.ownMiB = std::max(result.ownMiB, own.Stop());
}

void Run(const Options& options) {
  const std::string source =
      options.file.empty() ? options.folder + "/bench_sort.source" : options.file;
  const std::string target = options.folder + "/bench_sort.target";
  if (options.file.empty()) MakeFile(source, options);
  std::printf("%lld records of %lld variables%s, %d runs, medians\n",
              static_cast<long long>(options.records), static_cast<long long>(options.variables),
              options.cold ? " (not in the page cache)" : "", options.runs);
  std::printf("%11s %14s %18s %6s %16s %11s\n", "budget, MiB", "cp, s (cpu)", "fqsort, s (cpu)",
              "ratio", "own memory, MiB", "VmHWM, MiB");
  for (const std::size_t memory : options.memory) {
    Result result;
    for (int run = 0; run < options.runs; ++run) Measure(source, target, memory, options, result);
    Check(target, options);
    const bench::Seconds copy = bench::Median(result.copies);
    const bench::Seconds sort = bench::Median(result.sorts);
    std::printf("%11zu %6.3f (%5.3f) %10.3f (%5.3f) %6.2f %16.1f %11.1f\n", memory, copy.elapsed,
                copy.cpu, sort.elapsed, sort.cpu, sort.elapsed / copy.elapsed, result.ownMiB,
                bench::StatusMiB("VmHWM"));
  }
  unlink(target.c_str());
  if (options.file.empty()) unlink(source.c_str());
}

int Start(int argc, char** argv) {
  Options options;
  CLI::App app("Times fqsort against a plain copy of the same file");
  app.add_option("--file", options.file, "sort a copy of this file instead of one made here");
  app.add_option("--folder", options.folder, "where the files are made");
  app.add_option("--records", options.records)->check(CLI::PositiveNumber);
  app.add_option("--variables", options.variables)->check(CLI::Range(2, 32767));
  app.add_option("--memory", options.memory, "budgets in MiB");
  app.add_option("--runs", options.runs)->check(CLI::PositiveNumber);
  app.add_flag("--cold", options.cold, "take the file out of the page cache before each sort");
  CLI11_PARSE(app, argc, argv);
  Run(options);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  return bench::Main([&] { return Start(argc, argv); });
}
