// Times the numerics of data screening on data made here: the polychoric matrix of ordinal items,
// its asymptotic covariance matrix, and the moments of continuous variables beside a pass that only
// sums every cell. Cases come in blocks, as from a file; making the data is not timed.
//
//   bench_engine [--items N] [--item-cases N] [--variables N] [--cases N] [--threads N]...
//   [--runs N] [--codes FILE]
//
// With --codes the items are also written as comma-separated categories, for other programs.
#include <cmath>
#include <cstdio>
#include <functional>
#include <random>

#include <CLI/CLI.hpp>

#include "Bench.h"
#include "engine/stats/AsymptoticCovariance.h"
#include "engine/stats/Multivariate.h"
#include "engine/stats/Univariate.h"

namespace {

using stats::EDeletion;

struct Options {
  int items = 50;
  std::int64_t itemCases = 20'000;
  int variables = 25;
  std::int64_t cases = 1'000'000;
  std::vector<int> threads = {1, 2};
  int runs = 3;
  std::string codes;
};

constexpr std::int64_t kBlockCases = 32'768;

// The median of the seconds, and the highest memory of the job's own.
void Report(const char* job, int threads, const Options& options, double base,
            const std::function<void()>& run) {
  std::vector<double> seconds;
  bench::COwnMemory own;
  for (int i = 0; i < options.runs; ++i) {
    const bench::CTimer timer;
    run();
    seconds.push_back(timer.Seconds());
  }
  const double memory = own.Stop();
  const double median = bench::Median(seconds);
  std::printf("%-44s %7d %9.4f", job, threads, median);
  if (base > 0) {
    std::printf(" %9.2f", median / base);
  } else {
    std::printf(" %9s", "");
  }
  std::printf(" %12.1f\n", memory);
}

// Five factors, loadings of 0.7, five categories; variable after variable.
std::vector<std::uint8_t> MakeItems(const Options& options) {
  constexpr int kFactors = 5;
  std::mt19937_64 random(1);
  std::normal_distribution<double> normal;
  std::vector<std::uint8_t> codes(static_cast<std::size_t>(options.items * options.itemCases));
  for (std::int64_t k = 0; k < options.itemCases; ++k) {
    double factors[kFactors];
    for (double& f : factors) f = normal(random);
    for (int j = 0; j < options.items; ++j) {
      const double x = .7 * factors[j % kFactors] + std::sqrt(.51) * normal(random);
      std::uint8_t category = 0;
      for (const double cut : {-1.2, -.4, .4, 1.2}) category += x > cut ? 1 : 0;
      codes[static_cast<std::size_t>(j * options.itemCases + k)] = category;
    }
  }
  return codes;
}

void WriteCodes(const std::vector<std::uint8_t>& codes, const Options& options) {
  std::ofstream file(options.codes);
  for (int j = 0; j < options.items; ++j) file << (j ? "," : "") << 'x' << j + 1;
  for (std::int64_t k = 0; k < options.itemCases; ++k) {
    file << '\n';
    for (int j = 0; j < options.items; ++j)
      file << (j ? "," : "") << codes[static_cast<std::size_t>(j * options.itemCases + k)] + 1;
  }
  file << '\n';
  if (!file) throw std::runtime_error("cannot write " + options.codes);
}

void TimeItems(const Options& options) {
  const std::vector<std::uint8_t> codes = MakeItems(options);
  if (!options.codes.empty()) WriteCodes(codes, options);
  const auto addBlocks = [&](auto& sums) {
    for (std::int64_t at = 0; at < options.itemCases; at += kBlockCases) {
      sums.Add({codes.data() + at, std::min(kBlockCases, options.itemCases - at), options.items,
                options.itemCases, nullptr});
    }
  };
  const std::vector<int> categories(static_cast<std::size_t>(options.items), 5);
  std::printf("\n%d items with 5 categories, %lld cases, median of %d runs\n", options.items,
              static_cast<long long>(options.itemCases), options.runs);
  std::printf("%-44s %7s %9s %9s %12s\n", "", "threads", "seconds", "", "memory, MiB");
  for (const int threads : options.threads) {
    stats::CPairTables tables(categories, EDeletion::Listwise, threads);
    addBlocks(tables);
    stats::PolychoricMatrix matrix;
    Report("tables of all pairs", threads, options, 0, [&] {
      stats::CPairTables again(categories, EDeletion::Listwise, threads);
      addBlocks(again);
    });
    Report("tables and polychoric matrix", threads, options, 0, [&] {
      stats::CPairTables again(categories, EDeletion::Listwise, threads);
      addBlocks(again);
      matrix = stats::EstimatePolychoricMatrix(again, threads);
    });
    if (!matrix.Complete()) throw std::runtime_error("a pair has no polychoric correlation");
    Report("the same and asymptotic covariance matrix", threads, options, 0, [&] {
      stats::CPairTables again(categories, EDeletion::Listwise, threads);
      addBlocks(again);
      matrix = stats::EstimatePolychoricMatrix(again, threads);
      stats::CPolychoricAcov acov(again, matrix, EDeletion::Listwise, threads);
      addBlocks(acov);
      if (acov.Result().status != stats::EStatus::Ok)
        throw std::runtime_error("there is no asymptotic covariance matrix");
    });
  }
}

std::vector<double> MakeCells(const Options& options) {
  std::mt19937_64 random(2);
  std::vector<double> cells(static_cast<std::size_t>(options.variables * options.cases));
  std::normal_distribution<double> normal(50, 10);
  for (double& x : cells) x = normal(random);
  return cells;
}

volatile double sink = 0;

void TimeMoments(const Options& options) {
  const std::vector<double> cells = MakeCells(options);
  const int p = options.variables;
  const auto addBlocks = [&](auto& sums) {
    for (std::int64_t at = 0; at < options.cases; at += kBlockCases)
      sums.Add({cells.data() + at * p, std::min(kBlockCases, options.cases - at), p, p, nullptr});
  };
  std::printf("\n%lld cases of %d variables in memory, median of %d runs\n",
              static_cast<long long>(options.cases), p, options.runs);
  std::printf("%-44s %7s %9s %9s %12s\n", "", "threads", "seconds", "ratio", "memory, MiB");
  std::vector<double> base;
  const auto sumCells = [&] {
    std::vector<double> sums(static_cast<std::size_t>(p));
    for (std::int64_t k = 0; k < options.cases; ++k) {
      for (int j = 0; j < p; ++j)
        sums[static_cast<std::size_t>(j)] += cells[static_cast<std::size_t>(k * p + j)];
    }
    sink = sums[0];
  };
  for (int i = 0; i < 2 * options.runs + 1; ++i) {
    const bench::CTimer timer;
    sumCells();
    base.push_back(timer.Seconds());
  }
  const double median = bench::Median(base);
  Report("sum of every cell", 1, options, median, sumCells);
  for (const int threads : options.threads) {
    for (const EDeletion deletion : {EDeletion::Listwise, EDeletion::Pairwise}) {
      const bool listwise = deletion == EDeletion::Listwise;
      Report(listwise ? "mean to kurtosis, range" : "mean to kurtosis, range, pairwise", threads,
             options, median, [&] {
               stats::CUnivariate sums(p, deletion, threads);
               addBlocks(sums);
             });
      Report(listwise ? "moment matrix" : "moment matrix, pairwise", threads, options, median, [&] {
        stats::CMoments sums(p, deletion, threads);
        addBlocks(sums);
      });
    }
    stats::CMoments moments(p, EDeletion::Listwise, threads);
    addBlocks(moments);
    Report("multivariate skewness and kurtosis", threads, options, median, [&] {
      stats::CMardia mardia(moments, threads);
      addBlocks(mardia);
    });
  }
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Times the numerics of data screening");
  app.add_option("--items", options.items, "ordinal items; 0 leaves them out")
      ->check(CLI::Range(0, 500));
  app.add_option("--item-cases", options.itemCases)->check(CLI::PositiveNumber);
  app.add_option("--variables", options.variables, "continuous variables; 0 leaves them out")
      ->check(CLI::Range(0, 500));
  app.add_option("--cases", options.cases)->check(CLI::PositiveNumber);
  app.add_option("--threads", options.threads)->check(CLI::PositiveNumber);
  app.add_option("--runs", options.runs)->check(CLI::PositiveNumber);
  app.add_option("--codes", options.codes, "write the items here as comma-separated text");
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] {
    if (options.items > 1) TimeItems(options);
    if (options.variables > 0) TimeMoments(options);
    return EXIT_SUCCESS;
  });
}
