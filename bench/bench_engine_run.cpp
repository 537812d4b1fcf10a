// Times whole runs of the engine, from the syntax file to the output file, beside a pass over the
// same data file that only sums every cell. The data are made here; making them is not timed.
//
//   bench_engine_run [--cases N] [--variables N] [--threads N]... [--runs N] [--line TEXT]...
//
// Without --line it screens with all tests; each --line is a line of the syntax (the output line
// included). ProcedureData.h says what variables there are.
#include <cstdio>
#include <fstream>

#include <CLI/CLI.hpp>

#include "Bench.h"
#include "ProcedureData.h"
#include "engine/run/Run.h"
#include "vexutils/BlockIo.h"

namespace {

struct Options {
  int variables = 25;
  std::int64_t cases = 1'000'000;
  std::vector<int> threads = {1, 2};
  int runs = 3;
  std::vector<std::string> lines;
};

volatile double sink = 0;

void SumCells(const std::string& name) {
  CDescriptor file;
  if (!file.OpenForReading(name.c_str())) throw std::runtime_error("cannot read " + name);
  std::vector<double> cells(std::size_t{1} << 15);
  double sums[8] = {};
  const std::int64_t bytes = FileBytes(file.Get());
  const auto block = static_cast<std::int64_t>(cells.size() * sizeof(double));
  for (std::int64_t at = 0; at < bytes; at += block) {
    ReadAt(file.Get(), at, cells.data(), cells.size() * sizeof(double));
    for (std::size_t i = 0; i < cells.size(); i += 8) {
      for (std::size_t l = 0; l < 8; ++l) sums[l] += cells[i + l];
    }
  }
  sink = sums[0];
}

std::string Read(const std::string& name) {
  std::ifstream file(name);
  return {std::istreambuf_iterator<char>(file), {}};
}

template <typename Job>
double MedianSeconds(int runs, const Job& job) {
  std::vector<double> seconds;
  for (int i = 0; i < runs; ++i) {
    const bench::CTimer timer;
    job();
    seconds.push_back(timer.Seconds());
  }
  return bench::Median(seconds);
}

void Time(const Options& options, const std::string& folder) {
  const std::string data = folder + "/data.vsf";
  const std::string syntax = folder + "/data.trk";
  const std::string output = folder + "/data.out";
  bench::WriteProcedureData(options.cases, options.variables, data);
  std::ofstream text(syntax);
  text << "SY='" << data << "'\n";
  for (const std::string& line : options.lines) text << line << '\n';
  if (options.lines.empty()) text << "SE 1-" << options.variables << "\nOU\n";
  text.close();
  const double base = MedianSeconds(2 * options.runs + 1, [&] { SumCells(data); });
  std::printf("%lld cases of %d variables, median of %d runs\n",
              static_cast<long long>(options.cases), options.variables + bench::kMadeVariables,
              options.runs);
  std::printf("%-32s %7s %9s %9s %12s\n", "", "threads", "seconds", "ratio", "memory, MiB");
  std::printf("%-32s %7d %9.4f\n", "sum of every cell in the file", 1, base);
  std::string first;
  for (const int threads : options.threads) {
    bench::COwnMemory own;
    ERUNRESULT result = ERUNRESULT::Done;
    const double seconds = MedianSeconds(options.runs, [&] {
      result = RunEngine(syntax, output, {threads, nullptr, stderr});
    });
    const double memory = own.Stop();
    if (result != ERUNRESULT::Done) throw std::runtime_error("the run failed:\n" + Read(output));
    std::printf("%-32s %7d %9.4f %9.2f %12.1f\n", "the run", threads, seconds, seconds / base,
                memory);
    if (first.empty()) first = Read(output);
    if (first != Read(output)) throw std::runtime_error("the results depend on the threads");
  }
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Times whole runs of the engine");
  app.add_option("--cases", options.cases)->check(CLI::Range(1, 100'000'000));
  app.add_option("--variables", options.variables)->check(CLI::Range(1, 500));
  app.add_option("--threads", options.threads)->check(CLI::PositiveNumber);
  app.add_option("--runs", options.runs)->check(CLI::PositiveNumber);
  app.add_option("--line", options.lines, "a line of the syntax; the last one is the output line");
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] {
    bench::InNewFolder("bench_engine_run",
                       [&](const std::string& folder) { Time(options, folder); });
    return EXIT_SUCCESS;
  });
}
