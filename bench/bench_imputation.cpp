// Times EM and multiple imputation, whole runs of the engine from the syntax file to the output
// file and the completed data sets, beside R's packages on the same data where they are installed.
//
//   bench_imputation [--threads N]... [--runs N] [--peer SCRIPT]
//
// EM: 20,000 cases of 10 normal variables, a tenth of all values missing; 500,000, a fifth. MC:
// 2,800 cases of 25 items with 6 categories from 5 factors, 0.7% missing as in a survey; five data
// sets, with 5 and with more iterations, as continuous variables (what the peer does) and as
// ordinal ones.
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <random>

#include <CLI/CLI.hpp>

#include "Bench.h"
#include "datadoc/VsfLayout.h"
#include "engine/run/Run.h"

namespace {

constexpr double kMissing = -999999;

struct Table {
  int variables = 0;
  std::vector<double> cells;
};

// Normal variables of one factor; with categories five factors, the values cut to 1 ... 6.
Table MakeTable(int cases, int variables, double missing, bool categories) {
  std::mt19937_64 random(4);
  std::normal_distribution<double> normal;
  std::uniform_real_distribution<double> uniform;
  Table table{variables, {}};
  for (int k = 0; k < cases; ++k) {
    double factors[5];
    for (double& factor : factors) factor = normal(random);
    for (int j = 0; j < variables; ++j) {
      double value = .7 * factors[categories ? j % 5 : 0] + .714 * normal(random);
      if (categories) value = std::clamp(std::round(1.3 * value + 3.8), 1.0, 6.0);
      table.cells.push_back(uniform(random) < missing ? kMissing : value);
    }
  }
  return table;
}

void WriteVsf(const Table& table, const std::string& name) {
  TORVIKSTRUCT data;
  data.format = kNewFormat;
  data.variables = table.variables;
  data.records = static_cast<std::int32_t>(table.cells.size()) / table.variables;
  data.ResizeArrays(static_cast<std::size_t>(data.variables));
  for (int j = 0; j < data.variables; ++j)
    data.variable[static_cast<std::size_t>(j)].name = "x" + std::to_string(j + 1);
  std::ofstream file(name, std::ios::binary);
  const std::string description = EncodeVsfDescription(data, kNewFormat, VsfFiller::Spaces);
  file.write(description.data(), static_cast<std::streamsize>(description.size()));
  file.write(reinterpret_cast<const char*>(table.cells.data()),
             static_cast<std::streamsize>(table.cells.size() * sizeof(double)));
}

void WriteCsv(const Table& table, const std::string& name) {
  std::ofstream file(name);
  for (int j = 0; j < table.variables; ++j) file << (j > 0 ? "," : "") << 'x' << j + 1;
  file.precision(17);
  for (std::size_t i = 0; i < table.cells.size(); ++i) {
    file << (i % static_cast<std::size_t>(table.variables) == 0 ? '\n' : ',');
    if (table.cells[i] == kMissing) {
      file << "NA";
    } else {
      file << table.cells[i];
    }
  }
  file << '\n';
}

// Seconds by package, as the peer's script prints them.
std::map<std::string, double> TimePeers(const std::string& folder, const std::string& script) {
  std::map<std::string, double> seconds;
  const std::string command = "Rscript " + script + " " + folder + "/em.csv " + folder +
                              "/mc.csv > " + folder + "/peers 2>/dev/null";
  if (std::system(command.c_str()) != 0) return seconds;
  std::ifstream lines(folder + "/peers");
  std::string name;
  for (double value = 0; lines >> name >> value;) seconds[name] = value;
  return seconds;
}

struct Job {
  const char* name;
  const char* data;
  const char* lines;
  const char* peer;
};
constexpr Job kJobs[] = {
    {"EM, 20,000 x 10", "em", "CO 1-10\nEM 1-10 CC=0.0001\nOU", "lavaan"},
    {"EM, 500,000 x 10, a fifth missing", "large", "CO 1-10\nEM 1-10 CC=0.0001\nOU", ""},
    {"MC, continuous, IT=5, 5 data sets", "mc", "CO 1-25\nMC 1-25 IT=5 RP=5\nOU IX=1", "mice"},
    {"MC, continuous, IT=200", "mc", "CO 1-25\nMC 1-25 IT=200 RP=5\nOU IX=1", "mice"},
    {"MC, continuous, IT=200, RP=20", "mc", "CO 1-25\nMC 1-25 IT=200 RP=20\nOU IX=1", ""},
    {"MC, ordinal, IT=5, 5 data sets", "mc", "MC 1-25 IT=5 RP=5\nOU IX=1", "mice"},
    {"MC, ordinal, IT=50, 4 data sets", "mc", "MC 1-25 IT=50 RP=4\nOU IX=1", ""},
};

void Time(const std::string& folder, const std::vector<int>& threads, int runs,
          const std::string& peer) {
  const Table em = MakeTable(20000, 10, .1, false), mc = MakeTable(2800, 25, .007, true);
  WriteVsf(em, folder + "/em.vsf");
  WriteVsf(mc, folder + "/mc.vsf");
  WriteVsf(MakeTable(500000, 10, .2, false), folder + "/large.vsf");
  WriteCsv(em, folder + "/em.csv");
  WriteCsv(mc, folder + "/mc.csv");
  const auto peers = TimePeers(folder, peer);
  for (const auto& [name, seconds] : peers) std::printf("%-36s %17.4f\n", name.c_str(), seconds);
  std::printf("%-36s %7s %9s %9s %9s\n", "", "threads", "elapsed", "processor", "ratio");
  for (const Job& job : kJobs) {
    std::ofstream(folder + "/job.trk")
        << "SY='" << folder << '/' << job.data << ".vsf'\n"
        << job.lines << (job.data == std::string("mc") ? " RA=" + folder + "/done.vsf\n" : "\n");
    for (const int count : threads) {
      std::vector<bench::Seconds> all;
      for (int i = 0; i < runs; ++i) {
        const bench::CTimer timer;
        const double before = bench::CpuSeconds(RUSAGE_SELF);
        if (RunEngine(folder + "/job.trk", folder + "/job.out", {count, nullptr, stderr}) !=
            ERUNRESULT::Done) {
          throw std::runtime_error("the run failed; see " + folder + "/job.out");
        }
        all.push_back({timer.Seconds(), bench::CpuSeconds(RUSAGE_SELF) - before});
      }
      const bench::Seconds median = bench::Median(all);
      const auto other = peers.find(job.peer);
      std::printf("%-36s %7d %9.4f %9.4f", job.name, count, median.elapsed, median.cpu);
      if (other != peers.end()) std::printf(" %9.1f", other->second / median.elapsed);
      std::printf("\n");
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Times EM and multiple imputation");
  std::vector<int> threads = {1, 2};
  int runs = 3;
  std::string peer = "bench/imputation_peer.R";
  app.add_option("--threads", threads, "Numbers of threads");
  app.add_option("--runs", runs, "Runs of each; the median counts");
  app.add_option("--peer", peer, "the R script that times the packages");
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] {
    bench::InNewFolder("bench_imputation",
                       [&](const std::string& folder) { Time(folder, threads, runs, peer); });
    return EXIT_SUCCESS;
  });
}
