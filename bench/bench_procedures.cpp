// Times the procedures by whole runs of the engine, from the syntax file to the output file, beside
// R's functions on the same data in the same run; then the extraction of factors from a matrix, and
// whole runs of the shipped example from the command to the output.
//
//   bench_procedures [--cases N] [--variables N] [--runs N] [--peer SCRIPT] [--programs FOLDER]
//                    [--example FILE]
//
// R has the data in memory, and reading them is not timed; the engine reads its file. PR and LO of
// five categories get a fifth of the cases. Elapsed and processor seconds; on a machine that has
// other work the latter tell more. Without R, or one of its packages, its columns stay empty.
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>

#include <CLI/CLI.hpp>
#include <Eigen/Core>

#include "ProcedureData.h"
#include "Processes.h"
#include "engine/run/Run.h"
#include "engine/stats/Components.h"
#include "engine/stats/FactorAnalysis.h"
#include "engine/stats/Rotation.h"

namespace {

struct Options {
  int variables = 10;
  std::int64_t cases = 500'000;
  int runs = 5;
  std::string peer = "bench/procedures_peer.R";
  std::string programs = "build/release/bin";
  std::string example = "examples/bfi.sav";
};

using Peers = std::map<std::string, std::vector<std::pair<std::string, bench::Seconds>>>;

// What R's script prints: a job, a function, elapsed and processor seconds.
Peers AskPeer(const Options& options, const std::string& folder) {
  Peers found;
  const std::string command = "Rscript " + options.peer + " " + folder + " " +
                              std::to_string(options.cases) + " " +
                              std::to_string(options.variables) + " 2>/dev/null";
  std::FILE* const peer = popen(command.c_str(), "r");
  if (peer == nullptr) return found;
  char line[256];
  while (std::fgets(line, sizeof line, peer) != nullptr) {
    std::istringstream words(line);
    std::string job, function;
    bench::Seconds seconds;
    if (words >> job >> function >> seconds.elapsed >> seconds.cpu)
      found[job].push_back({function, seconds});
  }
  pclose(peer);
  return found;
}

void PrintPeers(const Peers& peers, const std::string& job, const bench::Seconds& own) {
  const auto found = peers.find(job);
  if (found == peers.end()) return;
  for (const auto& [function, seconds] : found->second) {
    std::printf("    %-30s %9.4f s %9.4f s %24.1f times, processor %.1f times\n", function.c_str(),
                seconds.elapsed, seconds.cpu, seconds.elapsed / own.elapsed, seconds.cpu / own.cpu);
  }
}

struct Measured {
  bench::Seconds seconds;
  double memory = 0;
};

Measured RunLine(const std::string& folder, const std::string& data, const std::string& line,
                 int threads, int runs) {
  std::ofstream(folder + "/data.trk") << "SY='" << folder << '/' << data << "'\n"
                                      << line << "\nOU\n";
  std::vector<bench::Seconds> all;
  bench::COwnMemory own;
  for (int run = 0; run < runs; ++run) {
    const double before = bench::CpuSeconds(RUSAGE_SELF);
    const bench::CTimer timer;
    if (RunEngine(folder + "/data.trk", folder + "/data.out", {threads, nullptr, stderr}) !=
        ERUNRESULT::Done) {
      throw std::runtime_error("the run failed: " + line);
    }
    all.push_back({timer.Seconds(), bench::CpuSeconds(RUSAGE_SELF) - before});
  }
  const double memory = own.Stop();
  return {bench::Median(all), memory};
}

void TimeProcedures(const Options& options, const std::string& folder, const Peers& peers) {
  const std::string x = " ON x1-x" + std::to_string(options.variables);
  const struct {
    const char* job;
    const char* data;
    std::string line;
  } jobs[] = {
      {"ols", "data.vsf", "RG y" + x},           {"logit", "data.vsf", "LO binary" + x},
      {"probit", "data.vsf", "PR binary" + x},   {"censored", "data.vsf", "CR floor" + x},
      {"ologit", "fifth.vsf", "LO ordered" + x}, {"oprobit", "fifth.vsf", "PR ordered" + x},
  };
  std::printf("%lld cases of %d variables, median of %d runs\n",
              static_cast<long long>(options.cases), options.variables, options.runs);
  std::printf("    %-30s %11s %11s %13s\n", "", "elapsed", "processor", "memory, MiB");
  for (const auto& job : jobs) {
    std::printf("%s\n", job.job);
    const Measured one = RunLine(folder, job.data, job.line, 1, options.runs);
    const Measured two = RunLine(folder, job.data, job.line, 2, options.runs);
    std::printf("    %-30s %9.4f s %9.4f s %13.1f\n", "engine, one thread", one.seconds.elapsed,
                one.seconds.cpu, one.memory);
    std::printf("    %-30s %9.4f s %9.4f s %13.1f\n", "engine, two threads", two.seconds.elapsed,
                two.seconds.cpu, two.memory);
    PrintPeers(peers, job.job, one.seconds);
  }
}

constexpr int kFactorVariables = 50;
constexpr int kFactors = 5;

// Correlations of variables with simple structure and small other loadings, which the model with
// so many factors does not fit.
Eigen::MatrixXd FactorMatrix() {
  Eigen::MatrixXd loadings(kFactorVariables, 2 * kFactors);
  for (int i = 0; i < kFactorVariables; ++i) {
    for (int j = 0; j < loadings.cols(); ++j) {
      loadings(i, j) = i % kFactors == j ? .5 + .005 * i : .1 * std::sin(3. * i + 7. * j);
    }
  }
  Eigen::MatrixXd matrix = loadings * loadings.transpose();
  matrix.diagonal().setOnes();
  return matrix;
}

void WriteFactorMatrix(const std::string& folder) {
  const Eigen::MatrixXd matrix = FactorMatrix();
  std::ofstream file(folder + "/factors.bin", std::ios::binary);
  file.write(reinterpret_cast<const char*>(matrix.data()),
             static_cast<std::streamsize>(sizeof(double)) * matrix.size());
}

void TimeFactors(const Options& options, const Peers& peers) {
  constexpr double kCases = 2000;
  const Eigen::MatrixXd matrix = FactorMatrix();
  std::printf("%d factors of a matrix of %d variables\n", kFactors, kFactorVariables);
  const auto time = [&](const char* job, const char* name, const auto& work) {
    std::vector<bench::Seconds> all;
    for (int run = 0; run < 4 * options.runs; ++run) {
      const double before = bench::CpuSeconds(RUSAGE_SELF);
      const bench::CTimer timer;
      work();
      all.push_back({timer.Seconds(), bench::CpuSeconds(RUSAGE_SELF) - before});
    }
    const bench::Seconds median = bench::Median(all);
    std::printf("%s\n    %-30s %9.4f s %9.4f s\n", job, name, median.elapsed, median.cpu);
    PrintPeers(peers, job, median);
  };
  for (const auto method :
       {stats::EFactorMethod::MaximumLikelihood, stats::EFactorMethod::Minres}) {
    const bool minres = method == stats::EFactorMethod::Minres;
    time(minres ? "minres" : "ml", "engine, with both rotations", [&] {
      const auto result = stats::EstimateFactors(matrix, kCases, kFactors, method);
      if (result.status != stats::EStatus::Ok) throw std::runtime_error("no factors");
      stats::RotatePromax(stats::RotateVarimax(result.loadings).loadings);
    });
  }
  time("parallel", "engine, 100 samples, one thread",
       [&] { stats::AnalyseParallel(kFactorVariables, kCases, 100, 1); });
}

// The example as a user runs it: a process that writes the syntax, runs the engine and prints.
void TimeExample(const Options& options, const std::string& folder) {
  const std::string program = options.programs + "/vexdata", data = folder + "/bfi.VSF";
  if (!bench::Time({program, "import", options.example, data})) {
    std::printf("the example: no %s\n", program.c_str());
    return;
  }
  const std::vector<std::vector<std::string>> commands = {
      {},
      {"fa", "--factors", "5", "--minres"},
      {"fa", "--variables", "A1-A5", "--factors", "2"},
      {"pc", "--correlations"},
      {"ht", "--variables", "N1,N2"},
      {"et", "--variables", "N1-N5"},
      {"ns", "--variables", "O1-O5"},
      {"rg", "--y", "age", "--x", "A1-A5"},
      {"ts", "--y", "age", "--x", "A1", "--instruments", "A2,A3"},
      {"pr", "--y", "A1", "--x", "gender,age"},
      {"lo", "--y", "gender", "--x", "age,A1"},
      {"--line", "CA age", "--line", "CR age ON A1", "--line", "OU"},
  };
  std::printf("vexdata run bfi.VSF, from the command to the output\n");
  for (const auto& command : commands) {
    std::vector<std::string> words = {program, "run", data};
    words.insert(words.end(), command.begin(), command.end());
    std::string shown;
    for (const std::string& word : command) shown += word + ' ';
    std::vector<bench::Seconds> all;
    for (int run = 0; run < options.runs; ++run) {
      const auto measure = bench::Time(words);
      if (!measure) throw std::runtime_error("vexdata run failed: " + shown);
      all.push_back({measure->seconds, measure->processor});
    }
    const bench::Seconds median = bench::Median(all);
    std::printf("    %-48s %7.3f s, processor %7.3f s\n",
                shown.empty() ? "(screening, 28 variables)" : shown.c_str(), median.elapsed,
                median.cpu);
  }
}

void Time(const Options& options, const std::string& folder) {
  bench::WriteProcedureData(options.cases, options.variables, folder + "/data.vsf",
                            folder + "/cells.bin");
  bench::WriteProcedureData(options.cases / 5, options.variables, folder + "/fifth.vsf");
  WriteFactorMatrix(folder);
  const Peers peers = AskPeer(options, folder);
  if (peers.empty()) std::printf("R did not run\n");
  TimeProcedures(options, folder, peers);
  TimeFactors(options, peers);
  TimeExample(options, folder);
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Times the procedures beside R");
  app.add_option("--cases", options.cases)->check(CLI::Range(1000, 100'000'000));
  app.add_option("--variables", options.variables)->check(CLI::Range(1, 200));
  app.add_option("--runs", options.runs)->check(CLI::PositiveNumber);
  app.add_option("--peer", options.peer, "the R script that times the packages");
  app.add_option("--programs", options.programs, "the folder of vexdata and the engine");
  app.add_option("--example", options.example, "the shipped example");
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] {
    bench::InNewFolder("bench_procedures",
                       [&](const std::string& folder) { Time(options, folder); });
    return EXIT_SUCCESS;
  });
}
