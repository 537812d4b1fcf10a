// Times the factor analysis of ordinal variables by full-information maximum likelihood, from the
// answers to estimates with their information matrix, for one thread and for two, and says how far
// the estimates lie from what the answers were made of. The processor's time is given beside the
// elapsed one, for machines that do other things.
//
//   bench_ofa [--cases N] [--items N] [--factors N] [--csv FILE]
//
// With --csv the answers are written for ofa_peer.R, and nothing is timed.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <random>

#include <CLI/CLI.hpp>

#include "engine/stats/FactorAnalysis.h"
#include "engine/stats/FactorRotations.h"
#include "engine/stats/OrdinalFactorAnalysis.h"
#include "engine/stats/Polychoric.h"
#include "engine/stats/Thresholds.h"

namespace {

constexpr int kCategories = 5;
constexpr double kLoading = .7;

struct Options {
  std::int64_t cases = 2000;
  int items = 10;
  int factors = 1;
  std::string csv;
};

// Each item belongs to one factor with a loading of .7.
std::vector<std::uint8_t> MakeAnswers(const Options& options) {
  std::mt19937 random(5);
  std::normal_distribution<double> normal;
  std::vector<std::uint8_t> codes(static_cast<std::size_t>(options.cases * options.items));
  std::vector<double> factors(static_cast<std::size_t>(options.factors));
  for (std::int64_t k = 0; k < options.cases; ++k) {
    for (double& f : factors) f = normal(random);
    for (int j = 0; j < options.items; ++j) {
      const double y = kLoading * factors[static_cast<std::size_t>(j % options.factors)] +
                       std::sqrt(1 - kLoading * kLoading) * normal(random);
      int code = 0;
      for (const double cut : {-1.2, -.4, .4, 1.2}) code += y > cut ? 1 : 0;
      codes[static_cast<std::size_t>(j * options.cases + k)] = static_cast<std::uint8_t>(code);
    }
  }
  return codes;
}

void WriteCsv(const Options& options, const std::vector<std::uint8_t>& codes) {
  std::ofstream file(options.csv);
  for (int j = 0; j < options.items; ++j) file << (j > 0 ? "," : "") << "i" << j + 1;
  for (std::int64_t k = 0; k < options.cases; ++k) {
    file << '\n';
    for (int j = 0; j < options.items; ++j)
      file << (j > 0 ? "," : "") << codes[static_cast<std::size_t>(j * options.cases + k)] + 1;
  }
  file << '\n';
}

stats::OrdinalFactorResult Estimate(const Options& options, const std::vector<std::uint8_t>& codes,
                                    stats::ELink link, int threads) {
  const std::vector<int> categories(static_cast<std::size_t>(options.items), kCategories);
  const stats::CodeBlock block{codes.data(), options.cases, options.items, options.cases, nullptr};
  stats::COrdinalPatterns patterns(categories);
  patterns.Add(block);
  stats::CPairTables tables(categories, stats::EDeletion::Pairwise, threads);
  tables.Add(block);
  const auto correlations = stats::EstimatePolychoricMatrix(tables, threads);
  const auto factors =
      stats::EstimateFactors(correlations.correlation, static_cast<double>(options.cases),
                             options.factors, stats::EFactorMethod::Minres);
  std::vector<std::vector<double>> thresholds;
  for (int j = 0; j < options.items; ++j)
    thresholds.push_back(stats::EstimateThresholds(patterns.Margin(j)).threshold);
  stats::OrdinalFactorOptions estimation;
  estimation.threads = threads;
  return stats::EstimateOrdinalFactors(
      patterns, link, stats::StartingParameters(factors.loadings, thresholds, link), estimation);
}

double Run(const Options& options, const std::vector<std::uint8_t>& codes, stats::ELink link,
           int threads) {
  const auto begin = std::chrono::steady_clock::now();
  const std::clock_t before = std::clock();
  const auto result = Estimate(options, codes, link, threads);
  const double used = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
  const double elapsed =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  const double v = stats::CResponseFunction(link).ResidualVariance();
  const Eigen::MatrixXd loadings = stats::StandardisedLoadings(result.parameters.slopes, v);
  const Eigen::VectorXd squares = loadings.rowwise().squaredNorm();
  std::printf(
      "%-17s %d threads %8.3f s, processor %8.3f s; %zu steps, log-likelihood %.6f, root mean "
      "square communality off by %.4f%s\n",
      link == stats::ELink::Probit ? "normal ogive" : "proportional odds", threads, elapsed, used,
      result.history.size(), result.logLikelihood,
      std::sqrt((squares.array() - kLoading * kLoading).square().mean()),
      result.status == stats::EStatus::Ok ? "" : ", NOT CONVERGED");
  return elapsed;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Times the factor analysis of ordinal variables.");
  Options options;
  app.add_option("--cases", options.cases)->check(CLI::PositiveNumber);
  app.add_option("--items", options.items)->check(CLI::Range(3, 200));
  app.add_option("--factors", options.factors)->check(CLI::Range(1, stats::kMostFactors));
  app.add_option("--csv", options.csv);
  CLI11_PARSE(app, argc, argv);
  const std::vector<std::uint8_t> codes = MakeAnswers(options);
  if (!options.csv.empty()) {
    WriteCsv(options, codes);
    return 0;
  }
  for (const stats::ELink link : {stats::ELink::Probit, stats::ELink::Logistic}) {
    const double one = Run(options, codes, link, 1), two = Run(options, codes, link, 2);
    std::printf("%-17s speed-up with two threads %.2f\n", "", one / two);
  }
  return 0;
}
