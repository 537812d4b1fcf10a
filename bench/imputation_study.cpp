// A simulation study of multiple imputation: do pooled intervals hold the truth as often as they
// say, where the values that are missing hang on others and complete cases mislead?
//
//   imputation_study [--repetitions N] [--data-sets N]
//
// In each repetition 150 cases of x, y = 0.6 x + error and z = 0.5 y + error; y is missing in a
// good third of the cases, mostly where x is high. Estimated: the mean of y and the slope of z on
// y; with y cut into three categories also the share of the highest. Prints coverage of the 95%
// intervals and bias, next to those of the complete cases alone, and fails when the coverage of an
// imputed one is more than four times its Monte Carlo error below or above 95%.
#include <array>
#include <cmath>
#include <cstdio>
#include <random>

#include <CLI/CLI.hpp>

#include "engine/stats/Augmentation.h"
#include "engine/stats/IncompleteNormal.h"
#include "engine/stats/Parallel.h"
#include "engine/stats/Pooling.h"
#include "engine/stats/Thresholds.h"

namespace {

constexpr int kCases = 150;
constexpr double kCuts[] = {-.5, .6};

struct Cases {
  std::vector<double> cells;  // x, y, z
  std::vector<std::int64_t> numbers;
  stats::CaseBlock Block() const { return {cells.data(), kCases, 3, 3, nullptr}; }
};

Cases Draw(std::uint64_t repetition) {
  std::mt19937_64 random(repetition * 7919 + 13);
  std::normal_distribution<double> normal;
  Cases cases;
  for (int k = 0; k < kCases; ++k) {
    const double x = normal(random);
    const double y = .6 * x + .8 * normal(random);
    const double z = .5 * y + .9 * normal(random);
    const bool missing = x + normal(random) > .5;
    cases.cells.insert(cases.cells.end(), {x, missing ? std::nan("") : y, z});
    cases.numbers.push_back(k + 1);
  }
  return cases;
}

struct Estimate {
  double value, error;
};

// Mean of y, slope of z on y, share of the category above the last cut; cases without y are left
// out.
std::array<Estimate, 3> Analyse(const std::vector<double>& cells) {
  double n = 0, sum = 0, high = 0, sumZ = 0;
  for (std::size_t i = 0; i < cells.size(); i += 3) {
    if (std::isnan(cells[i + 1])) continue;
    n += 1, sum += cells[i + 1], sumZ += cells[i + 2], high += cells[i + 1] > kCuts[1] ? 1 : 0;
  }
  double yy = 0, zy = 0, zz = 0;
  for (std::size_t i = 0; i < cells.size(); i += 3) {
    if (std::isnan(cells[i + 1])) continue;
    const double y = cells[i + 1] - sum / n, z = cells[i + 2] - sumZ / n;
    yy += y * y, zy += z * y, zz += z * z;
  }
  const double slope = zy / yy;
  const double share = high / n;
  return {Estimate{sum / n, std::sqrt(yy / (n - 1) / n)},
          Estimate{slope, std::sqrt((zz - slope * zy) / (n - 2) / yy)},
          Estimate{share, std::sqrt(share * (1 - share) / n)}};
}

// Imputed with y as it is, or by its categories; then the cells hold a value within each.
std::vector<std::vector<double>> Impute(const Cases& cases, bool ordinal, int dataSets,
                                        std::uint64_t seed) {
  Cases model = cases;
  std::vector<stats::AugmentationVariable> variables(3);
  std::vector<double> scores;
  if (ordinal) {
    std::vector<double> frequencies(3, 0);
    for (std::size_t i = 1; i < model.cells.size(); i += 3) {
      double& y = model.cells[i];
      if (std::isnan(y)) continue;
      y = y > kCuts[1] ? 2 : y > kCuts[0] ? 1 : 0;
      frequencies[static_cast<std::size_t>(y)] += 1;
    }
    variables[1].thresholds = stats::EstimateThresholds(frequencies).threshold;
    scores = stats::ComputeNormalScores({0, 1, 2}, frequencies).score;
  }
  Cases scored = model;
  for (std::size_t i = 1; ordinal && i < scored.cells.size(); i += 3) {
    if (!std::isnan(scored.cells[i]))
      scored.cells[i] = scores[static_cast<std::size_t>(scored.cells[i])];
  }
  stats::CMissingPatterns patterns(Eigen::VectorXd::Zero(3), Eigen::VectorXd::Ones(3));
  patterns.Add(scored.Block());
  const auto em = stats::EstimateIncompleteNormal(patterns, 500, 1e-4);
  stats::CAugmentationSample sample(variables);
  sample.Add(model.Block(), model.numbers.data());
  sample.Finish();
  stats::AugmentationOptions options;
  options.chains = dataSets;
  options.iterations = 100;
  options.seed = seed;
  options.threads = 1;
  const auto result =
      stats::Augment(sample, {em.mean, em.covariance, em.meanStep, em.covarianceStep}, options);
  std::vector<std::vector<double>> completed;
  constexpr double kWithin[] = {-1, 0, 1};
  for (const auto& chain : result.chains) {
    std::vector<double>& cells = completed.emplace_back(cases.cells);
    for (std::size_t k = 0; k < cases.numbers.size(); ++k) {
      double& y = cells[3 * k + 1];
      if (ordinal && !std::isnan(y)) y = kWithin[static_cast<std::size_t>(model.cells[3 * k + 1])];
      if (!std::isnan(y)) continue;
      const std::size_t place = sample.PlaceOf(cases.numbers[k]);
      y = chain.imputed[sample.FirstMissing(place)];
      if (ordinal) y = kWithin[static_cast<std::size_t>(sample.Variable(1).CategoryOf(y))];
    }
  }
  return completed;
}

struct Row {
  const char* name;
  std::size_t estimate;
  double truth;
  bool ordinal;
};

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Coverage of pooled intervals");
  int repetitions = 1000, dataSets = 20;
  app.add_option("--repetitions", repetitions, "Samples drawn");
  app.add_option("--data-sets", dataSets, "Completed data sets of each");
  CLI11_PARSE(app, argc, argv);
  const double share = 0.5 * std::erfc(kCuts[1] / std::sqrt(2.0));
  const Row rows[] = {{"mean of y", 0, 0, false},
                      {"slope of z on y", 1, .5, false},
                      {"share of the highest category", 2, share, true}};
  struct Tally {
    double covered = 0, bias = 0, coveredComplete = 0, biasComplete = 0;
  };
  std::vector<std::array<Tally, 3>> tallies(static_cast<std::size_t>(repetitions));
  stats::ParallelFor(0, repetitions, [&](std::int64_t r) {
    const Cases cases = Draw(static_cast<std::uint64_t>(r));
    const auto complete = Analyse(cases.cells);
    for (const bool ordinal : {false, true}) {
      const auto sets = Impute(cases, ordinal, dataSets, static_cast<std::uint64_t>(r));
      for (std::size_t i = 0; i < 3; ++i) {
        if (rows[i].ordinal != ordinal) continue;
        std::vector<double> values, errors;
        for (const auto& cells : sets) {
          const Estimate one = Analyse(cells)[rows[i].estimate];
          values.push_back(one.value);
          errors.push_back(one.error);
        }
        const auto pooled = stats::PoolEstimates(values, errors, kCases - 2);
        const double truth = rows[i].truth;
        const Estimate& alone = complete[rows[i].estimate];
        tallies[static_cast<std::size_t>(r)][i] = {
            pooled.low <= truth && truth <= pooled.high ? 1.0 : 0.0, pooled.value - truth,
            std::abs(alone.value - truth) <= 1.98 * alone.error ? 1.0 : 0.0, alone.value - truth};
      }
    }
  });
  std::printf("%d repetitions, %d cases, %d data sets\n", repetitions, kCases, dataSets);
  std::printf("%-32s %10s %10s %22s %10s\n", "", "coverage", "bias", "complete cases: cov.",
              "bias");
  int status = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    Tally sum;
    for (const auto& tally : tallies) {
      sum.covered += tally[i].covered / repetitions;
      sum.bias += tally[i].bias / repetitions;
      sum.coveredComplete += tally[i].coveredComplete / repetitions;
      sum.biasComplete += tally[i].biasComplete / repetitions;
    }
    std::printf("%-32s %9.1f%% %10.4f %21.1f%% %10.4f\n", rows[i].name, 100 * sum.covered, sum.bias,
                100 * sum.coveredComplete, sum.biasComplete);
    if (std::abs(sum.covered - .95) > 4 * std::sqrt(.95 * .05 / repetitions)) status = 1;
  }
  std::printf("Monte Carlo error of a coverage: %.2f%%\n",
              100 * std::sqrt(.95 * .05 / repetitions));
  return status;
}
