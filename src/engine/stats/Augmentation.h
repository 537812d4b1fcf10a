// Multiple imputation by data augmentation.
#pragma once

#include <functional>

#include "engine/stats/AugmentationSample.h"
#include "engine/stats/Status.h"

namespace stats {

// Where the chains begin, in units of the model, and the direction that is watched: a weight for
// each mean and each element of the covariance matrix's lower triangle, usually the last step of
// EM, which converges most slowly where most information is missing (J. L. Schafer, Analysis of
// Incomplete Multivariate Data, 1997, section 4.4: the worst linear function).
struct AugmentationStart {
  Eigen::VectorXd mean;
  Eigen::MatrixXd covariance;
  Eigen::VectorXd meanDirection;
  Eigen::MatrixXd covarianceDirection;
};

struct AugmentationOptions {
  int chains = 1;  // each makes one completed data set
  // Only every so many-th chain is drawn, from this one on; the others stay empty.
  int part = 0, parts = 1;
  int iterations = 1;  // of each chain, at least 1
  std::uint64_t seed = 0;
  std::uint64_t repetition = 0;
  int threads = 0;  // 0: all processors
  // Asked after each iteration of any chain with the share that is done, on any thread; false
  // stops. Null: never.
  std::function<bool(double)> goOn;
};

struct AugmentationChain {
  EStatus status = EStatus::Ok;  // NotPositiveDefinite: the iteration after the last of `watched`
  std::vector<double> watched;   // the watched direction after each iteration
  // Of each variable in two windows, the third and the last quarter of the iterations: mean and
  // variance of the model's mean, then of its variance. Empty below four iterations.
  struct Window {
    Eigen::VectorXd average, variance;  // 2 p each, divisor n - 1
  };
  Window windows[2];
  Eigen::VectorXd mean;  // the last draw
  Eigen::MatrixXd covariance;
  std::vector<double> imputed;  // as FirstMissing counts; in units of the model
};

struct AugmentationResult {
  bool stopped = false;
  std::vector<AugmentationChain> chains;
};

// Data augmentation (M. A. Tanner and W. H. Wong, Journal of the American Statistical Association
// 82, 1987, 528-540) for the multivariate normal distribution with the prior |S|^(-(p + 1) / 2)
// (Schafer 1997, section 5.4). In turn: missing values given means and covariances, by patterns,
// with one factorisation a pattern; means and covariances given all values, S^-1 from a Wishart
// distribution with n - 1 degrees of freedom. Ordinal variables have underlying normal variables
// that are drawn as well, one after the other, within the thresholds of their categories (J. H.
// Albert and S. Chib, Journal of the American Statistical Association 88, 1993, 669-679). The
// thresholds stay as they are; means and variances of the underlying variables adapt to them, where
// there is one threshold only the variance is brought to 1 about it, which changes nothing else.
// Each chain begins at `start` and gives the missing values of its last iteration. All chains have
// random numbers of their own; nothing depends on the number of threads.
// n has to be above the number of variables.
AugmentationResult Augment(const CAugmentationSample& sample, const AugmentationStart& start,
                           const AugmentationOptions& options);

// Potential scale reduction of parameter k (of the 2 p of the windows) over all chains' windows (A.
// Gelman and D. B. Rubin, Statistical Science 7, 1992, 457-472); near 1 when they agree. NaN when
// there are too few iterations.
double PotentialScaleReduction(const std::vector<AugmentationChain>& chains, Eigen::Index k,
                               int iterations);

// Correlation of a series with itself `lag` iterations later, over all chains, about each chain's
// own mean; NaN when nothing varies or the chains are not longer than the lag.
double Autocorrelation(const std::vector<AugmentationChain>& chains, std::size_t lag);

}  // namespace stats
