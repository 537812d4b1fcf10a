// Times whole runs of the engine, from the syntax file to the output file, beside a pass over the
// same data file that only sums every cell. The data are made here; making them is not timed.
//
//   bench_engine_run [--cases N] [--variables N] [--threads N]... [--runs N] [--line TEXT]...
//
// Without --line it screens with all tests; each --line is a line of the syntax (the output line
// included). The variables x1, x2 ... are normal with correlations of 0.3; behind them stand "y",
// their sum and an error, "binary" and "ordered" (2 and 5 categories), both made of y, and
// "floor", y censored below at its lower quartile.
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

#include <CLI/CLI.hpp>

#include "Bench.h"
#include "datadoc/VsfLayout.h"
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

constexpr int kMade = 4;  // variables behind x1, x2 ...

TORVIKSTRUCT Describe(const Options& options) {
  TORVIKSTRUCT data;
  data.format = kNewFormat;
  data.variables = options.variables + kMade;
  data.records = static_cast<std::int32_t>(options.cases);
  data.ResizeArrays(static_cast<std::size_t>(data.variables));
  for (int j = 0; j < data.variables; ++j) {
    VARSTRUCT& variable = data.variable[static_cast<std::size_t>(j)];
    variable.name = "x" + std::to_string(j + 1);
    variable.type = kContinuous;
  }
  const auto made = static_cast<std::size_t>(options.variables);
  data.variable[made].name = "y";
  data.variable[made + 1].name = "binary";
  data.variable[made + 2].name = "ordered";
  data.variable[made + 3].name = "floor";
  data.variable[made + 1].type = data.variable[made + 2].type = kOrdinal;
  data.variable[made + 3].type = kCensoredBelow;
  return data;
}

void WriteData(const Options& options, const std::string& name) {
  std::ofstream file(name, std::ios::binary);
  const std::string description =
      EncodeVsfDescription(Describe(options), kNewFormat, VsfFiller::Spaces);
  file.write(description.data(), static_cast<std::streamsize>(description.size()));
  std::mt19937_64 random(3);
  std::normal_distribution<double> normal;
  std::vector<double> row(static_cast<std::size_t>(options.variables + kMade));
  const double own = std::sqrt(.7), shared = std::sqrt(.3);
  for (std::int64_t k = 0; k < options.cases; ++k) {
    const double common = shared * normal(random);
    double sum = 0;
    for (int j = 0; j < options.variables; ++j) {
      sum += row[static_cast<std::size_t>(j)] = common + own * normal(random);
    }
    const double y = sum / options.variables + normal(random);
    double* const made = row.data() + options.variables;
    made[0] = y;
    made[1] = y > .2 ? 1 : 0;
    made[2] = 1;
    for (const double cut : {-1.2, -.4, .4, 1.2}) made[2] += y > cut ? 1 : 0;
    made[3] = std::max(y, -.8);
    file.write(reinterpret_cast<const char*>(row.data()),
               static_cast<std::streamsize>(row.size() * sizeof(double)));
  }
  if (!file) throw std::runtime_error("cannot write " + name);
}

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
  WriteData(options, data);
  std::ofstream text(syntax);
  text << "SY='" << data << "'\n";
  for (const std::string& line : options.lines) text << line << '\n';
  if (options.lines.empty()) text << "SE 1-" << options.variables << "\nOU\n";
  text.close();
  const double base = MedianSeconds(2 * options.runs + 1, [&] { SumCells(data); });
  std::printf("%lld cases of %d variables, median of %d runs\n",
              static_cast<long long>(options.cases), options.variables + kMade, options.runs);
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
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("bench_engine_run." + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    try {
      Time(options, folder.string());
    } catch (...) {
      std::filesystem::remove_all(folder);
      throw;
    }
    std::filesystem::remove_all(folder);
    return EXIT_SUCCESS;
  });
}
