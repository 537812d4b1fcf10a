// Do bootstrap intervals hold what they promise? Draws data sets from known distributions, runs the
// engine on each with bootstrapping, and counts how often the 95% intervals cover the true value;
// compares the standard errors of the samples with the asymptotic ones of the same runs and with
// the spread of the estimates over the data sets.
//
//   simulate_bootstrap [--sets N] [--cases N] [--samples N] [--threads N]
//
// Ends with 1 when a coverage is further from 95% than three Monte Carlo standard errors and half a
// percent (intervals of finite samples are themselves approximate), or a mean standard error is
// more than 5% away from the asymptotic one.
#include <cmath>
#include <cstdio>
#include <fstream>
#include <random>

#include <CLI/CLI.hpp>

#include "Bench.h"
#include "datadoc/VsfLayout.h"
#include "engine/run/Run.h"
#include "engine/stats/Resampling.h"

namespace {

struct Options {
  int sets = 1000;
  int cases = 400;
  int samples = 600;
  int threads = 0;
};

constexpr double kCorrelation = .5;

// Two standard normal variables, either as they are or cut into categories.
void WriteSet(const std::string& name, int cases, bool ordinal, std::mt19937_64& random) {
  TORVIKSTRUCT data;
  data.format = kNewFormat;
  data.variables = 2;
  data.records = cases;
  data.ResizeArrays(2);
  for (std::size_t j = 0; j < 2; ++j) {
    data.variable[j].name = j == 0 ? "a" : "b";
    data.variable[j].type = ordinal ? kOrdinal : kContinuous;
  }
  std::ofstream file(name, std::ios::binary);
  const std::string description = EncodeVsfDescription(data, kNewFormat, VsfFiller::Spaces);
  file.write(description.data(), static_cast<std::streamsize>(description.size()));
  std::normal_distribution<double> normal;
  for (int i = 0; i < cases; ++i) {
    double row[2];
    row[0] = normal(random);
    row[1] = kCorrelation * row[0] + std::sqrt(1 - kCorrelation * kCorrelation) * normal(random);
    for (double& cell : row) {
      if (ordinal) cell = cell < -1 ? 1 : cell < -.2 ? 2 : cell < .7 ? 3 : 4;
    }
    file.write(reinterpret_cast<const char*>(row), sizeof row);
  }
}

std::vector<double> ReadNumbers(const std::string& name) {
  std::ifstream file(name);
  std::vector<double> numbers;
  for (double x = 0; file >> x;) numbers.push_back(x);
  return numbers;
}

// The asymptotic variance of the only element.
double ReadVariance(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  std::int32_t count = 0;
  double variance = 0;
  file.read(reinterpret_cast<char*>(&count), sizeof count);
  file.read(reinterpret_cast<char*>(&variance), sizeof variance);
  return variance;
}

struct Tally {
  const char* what;
  double truth;
  double covered = 0, coveredCorrected = 0;
  double errors = 0, asymptotic = 0;  // sums
  double estimates = 0, squares = 0;

  void Add(double estimate, const std::vector<double>& samples, double asymptoticError) {
    const auto summary = stats::SummariseSamples(estimate, samples);
    const auto holds = [&](const stats::Interval& interval) {
      return interval.from <= truth && truth <= interval.to ? 1.0 : 0.0;
    };
    covered += holds(summary.percentile);
    coveredCorrected += holds(summary.corrected);
    errors += summary.standardError;
    asymptotic += asymptoticError;
    estimates += estimate;
    squares += estimate * estimate;
  }

  bool Print(int sets) const {
    const double nominal = .95;
    const double allowed = 3 * std::sqrt(nominal * (1 - nominal) / sets) + .005;
    const double mean = estimates / sets;
    const double spread = std::sqrt((squares / sets - mean * mean) * sets / (sets - 1));
    const bool good = std::fabs(covered / sets - nominal) <= allowed &&
                      std::fabs(coveredCorrected / sets - nominal) <= allowed &&
                      std::fabs(errors / asymptotic - 1) <= .05;
    std::printf("%-26s %9.4f %9.4f %10.4f %10.4f %10.5f %10.5f %10.5f  %s\n", what, truth, mean,
                covered / sets, coveredCorrected / sets, errors / sets, asymptotic / sets, spread,
                good ? "as it should be" : "NOT WITHIN BOUNDS");
    return good;
  }
};

std::vector<double> Every(const std::vector<double>& numbers, std::size_t step, std::size_t at) {
  std::vector<double> taken;
  for (std::size_t i = at; i < numbers.size(); i += step) {
    constexpr double kNone = -999999;
    if (numbers[i] != kNone) taken.push_back(numbers[i]);
  }
  return taken;
}

int Simulate(const Options& options, const std::string& folder) {
  Tally pearson{"Pearson correlation", kCorrelation};
  Tally mean{"mean", 0};
  Tally polychoric{"polychoric correlation", kCorrelation};
  std::mt19937_64 random(2024);
  const auto path = [&](const char* name) { return folder + "/" + name; };
  for (int set = 0; set < options.sets; ++set) {
    for (const bool ordinal : {false, true}) {
      WriteSet(path("data.vsf"), options.cases, ordinal, random);
      std::ofstream(path("data.trk"))
          << "SY='" << path("data.vsf") << "'\nOU MA=KM XT XM IX=" << set
          << " BS=" << options.samples << " SM=" << path("sm") << " BM=" << path("bm")
          << " ME=" << path("me") << " SD=" << path("sd") << " AV=" << path("av") << '\n';
      if (RunEngine(path("data.trk"), path("data.out"), {options.threads, nullptr, stderr}) !=
          ERUNRESULT::Done) {
        throw std::runtime_error("the run of data set " + std::to_string(set) + " failed");
      }
      (ordinal ? polychoric : pearson)
          .Add(ReadNumbers(path("sm")).at(1), Every(ReadNumbers(path("bm")), 3, 1),
               std::sqrt(ReadVariance(path("av"))));
      if (ordinal) continue;
      // The samples' means scatter about that of the data; their deviations give its error.
      const auto means = Every(ReadNumbers(path("me")), 2, 0);
      const auto deviations = Every(ReadNumbers(path("sd")), 2, 0);
      double center = 0, deviation = 0;
      for (const double m : means) center += m / static_cast<double>(means.size());
      for (const double d : deviations) deviation += d / static_cast<double>(deviations.size());
      mean.Add(center, means, deviation / std::sqrt(options.cases));
    }
  }
  std::printf("%d data sets of %d cases, %d samples each\n", options.sets, options.cases,
              options.samples);
  std::printf("%-26s %9s %9s %10s %10s %10s %10s %10s\n", "", "truth", "mean", "percentile",
              "corrected", "s.e.", "asymptotic", "spread");
  bool good = true;
  for (const Tally* tally : {&mean, &pearson, &polychoric})
    good = tally->Print(options.sets) && good;
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Coverage of bootstrap intervals");
  app.add_option("--sets", options.sets)->check(CLI::Range(10, 1'000'000));
  app.add_option("--cases", options.cases)->check(CLI::Range(50, 1'000'000));
  app.add_option("--samples", options.samples)->check(CLI::Range(40, 1'000'000));
  app.add_option("--threads", options.threads)->check(CLI::NonNegativeNumber);
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] {
    return bench::InNewFolder("simulate_bootstrap",
                              [&](const std::string& folder) { return Simulate(options, folder); });
  });
}
