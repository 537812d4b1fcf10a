#include "engine/stats/Augmentation.h"

#include <atomic>
#include <cmath>
#include <limits>

#include <Eigen/LU>

#include "engine/stats/AugmentationDraws.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/Parallel.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

// The stream of the model; those of blocks are counted from 0.
constexpr std::uint64_t kModelStream = ~std::uint64_t{0};

// Means and variances of the parameters over a window of iterations (B. P. Welford, 1962).
struct Running {
  double n = 0;
  VectorXd average, squares;

  void Add(const VectorXd& values) {
    if (n == 0) {
      average.setZero(values.size());
      squares.setZero(values.size());
    }
    n += 1;
    const VectorXd deviation = values - average;
    average += deviation / n;
    squares += deviation.cwiseProduct(values - average);
  }
};

class CChain {
 public:
  CChain(const CAugmentationSample& sample, const AugmentationStart& start,
         const AugmentationOptions& options, std::uint64_t number)
      : sample_(sample), start_(start), options_(options), number_(number), draw_(sample) {
    model_.mean = start.mean;
    model_.covariance = start.covariance;
    model_.inverse = start.covariance.inverse();
    rescaled_.setOnes(start.mean.size());
    for (std::size_t b = 0; b < sample.Blocks().size(); ++b) blocks_.emplace_back(sample, b);
    if (sample.HasOrdinal()) StartStates();
  }

  // `told` is asked after each iteration whether to go on.
  bool Run(int threads, const std::function<bool()>& told, AugmentationChain& result) {
    Running windows[2];
    for (int i = 0; i < options_.iterations; ++i) {
      DrawValues(static_cast<std::uint64_t>(i), threads, nullptr);
      CRandomStream random = Stream(static_cast<std::uint64_t>(i), kModelStream);
      AddUp();
      if (!draw_.Draw(total_, random, model_, rescaled_)) {
        result.status = EStatus::NotPositiveDefinite;
        return true;
      }
      result.watched.push_back(Watched());
      const int quarter = 4 * i / options_.iterations;
      if (quarter >= 2) windows[quarter - 2].Add(Parameters());
      if (!told()) return false;
    }
    result.imputed.resize(sample_.MissingValues());
    DrawValues(static_cast<std::uint64_t>(options_.iterations), threads, result.imputed.data());
    for (int w = 0; w < 2; ++w) {
      if (windows[w].n < 2) continue;
      result.windows[w] = {windows[w].average, windows[w].squares / (windows[w].n - 1)};
    }
    result.mean = model_.mean;
    result.covariance = model_.covariance;
    return true;
  }

 private:
  CRandomStream Stream(std::uint64_t iteration, std::uint64_t which) const {
    return CRandomStream({options_.seed, options_.repetition, number_, iteration, which});
  }

  // Underlying variables begin at the middle of their category's probability, missing ones at 0.
  void StartStates() {
    const auto p = static_cast<std::size_t>(sample_.Variables());
    state_.resize(sample_.Held() * p);
    std::vector<std::vector<double>> middles(p);
    for (std::size_t j = 0; j < p; ++j) {
      const auto& thresholds = sample_.Variable(static_cast<int>(j)).thresholds;
      for (std::size_t c = 0; c <= thresholds.size() && !thresholds.empty(); ++c) {
        const double low = c == 0 ? 0 : NormalCdf(thresholds[c - 1]);
        const double high = c == thresholds.size() ? 1 : NormalCdf(thresholds[c]);
        middles[j].push_back(NormalQuantile((low + high) / 2));
      }
    }
    for (std::size_t place = 0; place < sample_.Held(); ++place) {
      const double* const cells = sample_.Cells(place);
      for (std::size_t j = 0; j < p; ++j) {
        const double cell = cells[j];
        state_[place * p + j] = std::isnan(cell)     ? 0
                                : middles[j].empty() ? cell
                                                     : middles[j][static_cast<std::size_t>(cell)];
      }
    }
  }

  void DrawValues(std::uint64_t iteration, int threads, double* imputed) {
    ParallelFor(threads, static_cast<std::int64_t>(blocks_.size()), [&](std::int64_t b) {
      CRandomStream random = Stream(iteration, static_cast<std::uint64_t>(b));
      blocks_[static_cast<std::size_t>(b)].Draw(model_, rescaled_, random,
                                                state_.empty() ? nullptr : state_.data(), imputed);
    });
  }

  void AddUp() {
    total_.sum = sample_.FixedSum();
    total_.products = sample_.FixedProducts();
    for (const CAugmentationBlock& block : blocks_) {
      total_.sum += block.Sums().sum;
      total_.products += block.Sums().products;
    }
  }

  double Watched() const {
    return start_.meanDirection.dot(model_.mean) +
           start_.covarianceDirection.cwiseProduct(model_.covariance).sum();
  }

  VectorXd Parameters() const {
    VectorXd parameters(2 * model_.mean.size());
    parameters << model_.mean, model_.covariance.diagonal();
    return parameters;
  }

  const CAugmentationSample& sample_;
  const AugmentationStart& start_;
  const AugmentationOptions& options_;
  std::uint64_t number_;
  CModelDraw draw_;
  AugmentationModel model_;
  AugmentationSums total_;
  VectorXd rescaled_;
  std::vector<CAugmentationBlock> blocks_;
  std::vector<double> state_;
};

}  // namespace

AugmentationResult Augment(const CAugmentationSample& sample, const AugmentationStart& start,
                           const AugmentationOptions& options) {
  AugmentationResult result;
  result.chains.resize(static_cast<std::size_t>(options.chains));
  const std::int64_t own = (options.chains - options.part + options.parts - 1) / options.parts;
  const double all = static_cast<double>(own) * options.iterations;
  std::atomic<std::int64_t> done{0};
  std::atomic<bool> stopped{false};
  const auto told = [&] {
    const auto share = static_cast<double>(++done) / all;
    if (options.goOn && !options.goOn(share)) stopped = true;
    return !stopped;
  };
  const auto run = [&](std::int64_t number, int threads) {
    if (stopped) return;
    const std::int64_t chain = options.part + number * options.parts;
    CChain(sample, start, options, static_cast<std::uint64_t>(chain))
        .Run(threads, told, result.chains[static_cast<std::size_t>(chain)]);
  };
  // Chains side by side as long as there is one for each thread; what remains shares the threads
  // where an iteration is worth it.
  const int threads = ThreadCount(options.threads);
  constexpr std::size_t kWorthSharing = 20000;  // cells that an iteration draws
  const std::size_t drawn = sample.HasOrdinal()
                                ? sample.Held() * static_cast<std::size_t>(sample.Variables())
                                : sample.MissingValues();
  const std::int64_t alone = drawn < kWorthSharing ? own : own / threads * threads;
  ParallelFor(threads, alone, [&](std::int64_t number) { run(number, 1); });
  for (std::int64_t number = alone; number < own; ++number) run(number, threads);
  result.stopped = stopped;
  return result;
}

double PotentialScaleReduction(const std::vector<AugmentationChain>& chains, Index k,
                               int iterations) {
  double count = 0, mean = 0, between = 0, within = 0;
  for (const AugmentationChain& chain : chains) {
    for (const auto& window : chain.windows) {
      if (window.average.size() == 0) return std::numeric_limits<double>::quiet_NaN();
      count += 1;
      const double deviation = window.average(k) - mean;
      mean += deviation / count;
      between += deviation * (window.average(k) - mean);
      within += window.variance(k);
    }
  }
  between /= count - 1;
  within /= count;
  if (!(within > 0)) return std::numeric_limits<double>::quiet_NaN();
  const double length = iterations / 4.0;
  return std::sqrt((length - 1) / length + between / within);
}

double Autocorrelation(const std::vector<AugmentationChain>& chains, std::size_t lag) {
  double products = 0, squares = 0;
  for (const AugmentationChain& chain : chains) {
    const std::vector<double>& series = chain.watched;
    const std::size_t n = series.size();
    if (n <= lag) continue;
    const double mean = Eigen::Map<const VectorXd>(series.data(), static_cast<Index>(n)).mean();
    for (std::size_t i = 0; i < n; ++i) {
      squares += (series[i] - mean) * (series[i] - mean);
      if (i >= lag) products += (series[i] - mean) * (series[i - lag] - mean);
    }
  }
  return squares > 0 ? products / squares : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace stats
