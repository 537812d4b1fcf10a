// Times bootstrapping by whole runs of the engine, from the syntax file to the output and the file
// of the samples' matrices, beside R's packages on the same data in the same run.
//
//   bench_bootstrap [--cases N] [--items N] [--samples N] [--runs N] [--peer SCRIPT]
//
// The items have six categories and five factors. First the polychoric correlations of all of them,
// then the Pearson correlations of the first ten, a regression and a factor analysis. Without R, or
// without one of its packages, that column stays empty.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include <CLI/CLI.hpp>

#include "Bench.h"
#include "datadoc/VsfLayout.h"
#include "engine/run/Run.h"

namespace {

struct Options {
  int items = 25;
  int cases = 2436;
  int samples = 1000;
  int runs = 3;
  std::string peer = "bench/bootstrap_peer.R";
};

void WriteData(const Options& options, const std::string& folder) {
  constexpr int kFactors = 5;
  constexpr double kCuts[] = {-1.6, -.9, -.3, .4, 1.2};
  TORVIKSTRUCT data;
  data.format = kNewFormat;
  data.variables = options.items;
  data.records = options.cases;
  data.ResizeArrays(static_cast<std::size_t>(data.variables));
  std::ofstream file(folder + "/data.vsf", std::ios::binary), text(folder + "/data.csv");
  for (int j = 0; j < options.items; ++j) {
    VARSTRUCT& variable = data.variable[static_cast<std::size_t>(j)];
    variable.name = "x" + std::to_string(j + 1);
    variable.type = kOrdinal;
    text << (j > 0 ? "," : "") << variable.name;
  }
  text << '\n';
  const std::string description = EncodeVsfDescription(data, kNewFormat, VsfFiller::Spaces);
  file.write(description.data(), static_cast<std::streamsize>(description.size()));
  std::mt19937_64 random(7);
  std::normal_distribution<double> normal;
  for (int i = 0; i < options.cases; ++i) {
    const double general = std::sqrt(.3) * normal(random);
    double factor[kFactors];
    for (double& f : factor) f = general + std::sqrt(.7) * normal(random);
    for (int j = 0; j < options.items; ++j) {
      const double latent = .7 * factor[j % kFactors] + std::sqrt(.51) * normal(random);
      double cell = 1;
      for (const double cut : kCuts) cell += latent > cut ? 1 : 0;
      file.write(reinterpret_cast<const char*>(&cell), sizeof cell);
      text << (j > 0 ? "," : "") << cell;
    }
    text << '\n';
  }
  if (!file || !text) throw std::runtime_error("cannot write to " + folder);
}

bench::Seconds RunLines(const std::string& folder, const std::string& lines, int threads) {
  std::ofstream(folder + "/data.trk") << "SY='" << folder << "/data.vsf'\n" << lines << '\n';
  const double before = bench::CpuSeconds(RUSAGE_SELF);
  const bench::CTimer timer;
  if (RunEngine(folder + "/data.trk", folder + "/data.out", {threads, nullptr, stderr}) !=
      ERUNRESULT::Done) {
    std::ifstream out(folder + "/data.out");
    throw std::runtime_error("the run failed:\n" +
                             std::string(std::istreambuf_iterator<char>(out), {}));
  }
  return {timer.Seconds(), bench::CpuSeconds(RUSAGE_SELF) - before};
}

// What R's script prints: a job, a package, processor seconds for one sample.
std::map<std::string, std::string> AskPeer(const Options& options, const std::string& folder) {
  std::map<std::string, std::string> found;
  const std::string command = "Rscript " + options.peer + " " + folder + "/data.csv 2>/dev/null";
  std::FILE* const peer = popen(command.c_str(), "r");
  if (peer == nullptr) return found;
  char line[256];
  while (std::fgets(line, sizeof line, peer) != nullptr) {
    std::istringstream words(line);
    std::string job, package, seconds;
    if (words >> job >> package >> seconds) found[job] += package + " " + seconds + " ";
  }
  pclose(peer);
  return found;
}

void PrintPeers(const std::string& peers, double own) {
  std::istringstream words(peers);
  std::string package;
  for (double seconds = 0; words >> package >> seconds;) {
    std::printf("    %-24s %10.3f ms a sample   %8.1f times the engine's\n", package.c_str(),
                1e3 * seconds, seconds / own);
  }
}

void Time(const Options& options, const std::string& folder) {
  WriteData(options, folder);
  const auto peers = AskPeer(options, folder);
  const std::string bs = " BS=" + std::to_string(options.samples) + " IX=1 XT XM";
  const std::string ten = "x1-x" + std::to_string(std::min(options.items, 10));
  const struct {
    const char* job;
    std::string lines;
  } jobs[] = {
      {"polychoric", "OU MA=KM BM=" + folder + "/bm" + bs},
      {"pearson", "SE " + ten + "\nCO " + ten + "\nOU MA=KM BM=" + folder + "/bm" + bs},
      {"regression", "CO " + ten + "\nRG x1 ON x2-x5\nOU" + bs},
      {"factors", "SE " + ten + "\nCO " + ten + "\nFA NF=2\nOU" + bs},
  };
  std::printf("%d cases, %d items, %d samples, median of %d runs\n", options.cases, options.items,
              options.samples, options.runs);
  for (const auto& job : jobs) {
    std::vector<bench::Seconds> one, two;
    for (int run = 0; run < options.runs; ++run) {
      one.push_back(RunLines(folder, job.lines, 1));
      two.push_back(RunLines(folder, job.lines, 2));
    }
    const bench::Seconds single = bench::Median(one), both = bench::Median(two);
    std::printf(
        "%s\n    one thread %.3f s, processor %.3f s; two threads %.3f s, processor %.3f s; "
        "speed-up %.2f\n",
        job.job, single.elapsed, single.cpu, both.elapsed, both.cpu, single.elapsed / both.elapsed);
    const double own = single.cpu / options.samples;
    std::printf("    %-24s %10.3f ms a sample\n", "engine, one thread", 1e3 * own);
    const auto found = peers.find(job.job);
    if (found != peers.end()) PrintPeers(found->second, own);
  }
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Times bootstrapping beside R");
  app.add_option("--cases", options.cases)->check(CLI::Range(50, 10'000'000));
  app.add_option("--items", options.items)->check(CLI::Range(5, 200));
  app.add_option("--samples", options.samples)->check(CLI::PositiveNumber);
  app.add_option("--runs", options.runs)->check(CLI::PositiveNumber);
  app.add_option("--peer", options.peer, "the R script that times the packages");
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] {
    bench::InNewFolder("bench_bootstrap",
                       [&](const std::string& folder) { Time(options, folder); });
    return EXIT_SUCCESS;
  });
}
