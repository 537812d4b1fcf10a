// Samples drawn with replacement from the cases of a data set, as counts of how often each case was
// drawn; and what the estimates of many samples say about an estimate.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/stats/SampleStream.h"
#include "engine/stats/Status.h"

namespace stats {

// Cases with weights stand for that many cases each: they are drawn with probabilities in
// proportion to their weights, one draw at a time in constant time (A. J. Walker, ACM Transactions
// on Mathematical Software 3, 1977, 253-256; tables as in M. D. Vose, IEEE Transactions on Software
// Engineering 17, 1991, 972-975).
class CResampler {
 public:
  // Weights are finite and above 0, and there is at least one (else std::invalid_argument).
  explicit CResampler(const std::vector<double>& weights);

  double N() const { return n_; }  // sum of weights

  // counts[i]: how often case i was drawn.
  void Draw(std::int64_t draws, CSampleStream random, std::vector<double>& counts) const;

 private:
  std::size_t cases_ = 0;
  double n_ = 0;
  // Empty when all cases are equally likely. A place is kept with its probability, or left for its
  // alias.
  std::vector<double> keep_;
  std::vector<std::uint32_t> alias_;
};

// What the samples say about an estimate. Samples of m cases in place of n say it about estimates
// from m cases; deviations from the estimate are brought to n cases by `scale`, the root of m / n
// (P. J. Bickel, F. Gotze and W. R. van Zwet, Statistica Sinica 7, 1997, 1-31), the bias by its
// square.
//   standardError  standard deviation of the samples' values, divisor B - 1
//   bias           their mean minus the estimate
//   percentile     the quantiles (1 - level) / 2 and (1 + level) / 2 of the values, that of share p
//                  being the (B + 1) p-th in order (between two: interpolated; beyond the ends: the
//                  first or last)
//   corrected      the same at the shares Phi(2 z0 + z), z being those of the percentiles and z0
//   the
//                  normal quantile of the share of values below the estimate, ties counting half
//                  (B. Efron, Canadian Journal of Statistics 9, 1981, 139-158); `hasCorrected` is
//                  false when the values lie all on one side of the estimate.
// Status: TooFewCases with fewer than two values, NotFinite.
struct Interval {
  double from = 0, to = 0;
};
struct BootstrapSummary {
  EStatus status = EStatus::TooFewCases;
  double mean = 0, bias = 0, standardError = 0;
  Interval percentile, corrected;
  bool hasCorrected = false;
};
BootstrapSummary SummariseSamples(double estimate, std::vector<double> values, double scale = 1,
                                  double level = 0.95);

}  // namespace stats
