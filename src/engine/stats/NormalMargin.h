// What single variables show of the standard normal variables behind them.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "engine/stats/Blocks.h"
#include "engine/stats/Censored.h"
#include "engine/stats/Status.h"
#include "engine/stats/Thresholds.h"
#include "engine/stats/Univariate.h"

namespace stats {

// What a case shows: a point, an interval (counted from 0) or nothing.
struct SeenValue {
  static constexpr int kPoint = -1, kMissing = -2;
  int interval = kMissing;
  double z = 0;  // of a point
};

// A continuous variable shows points, an ordinal one the interval between two thresholds, a
// censored one the point between its limits and the interval beyond them otherwise. All parameters
// come from the variable's own cases: mean and standard deviation (divisor n), the censored ones
// of EstimateCensored, thresholds of EstimateThresholds.
class CNormalMargin {
 public:
  CNormalMargin() = default;
  static CNormalMargin Continuous(const UnivariateResult& variable);
  // Limits are those of SumsAtRange; `estimate` belongs to them.
  static CNormalMargin Censored(const UnivariateResult& variable, ECensoring censoring,
                                const CensoredResult& estimate);
  static CNormalMargin Ordinal(const std::vector<double>& frequencies);

  EStatus Status() const { return status_; }
  bool IsOrdinal() const { return ordinal_; }
  double Mean() const { return mean_; }
  double Deviation() const { return sd_; }

  SeenValue See(double value) const;  // NaN: missing
  SeenValue See(std::uint8_t code) const;

  // The ascending borders of the intervals, standardised; one fewer than the intervals. Between the
  // limits of a censored variable lies an interval that no case is in.
  const std::vector<double>& Edges() const { return edges_; }
  double Lower(int interval) const;
  double Upper(int interval) const;

  // The mean of the normal variable given what is seen.
  double Expectation(const SeenValue& seen) const;

  // First-order influence of a case on a function of the parameters of this variable. `point` and
  // `square` are the function's derivatives by the points and by the points times themselves,
  // `edges` those by the borders.
  class CInfluence {
   public:
    CInfluence(const CNormalMargin& margin, double point, double square,
               const std::vector<double>& edges);
    double operator()(const SeenValue& seen) const;

   private:
    double shift_ = 0, spread_ = 0;  // of the scores by mean and standard deviation
    std::vector<double> byInterval_;
  };

  // Influence of a case on log(standard deviation); 0 for an ordinal variable.
  double OnLogDeviation(const SeenValue& seen) const;

 private:
  struct Scores {
    double mean = 0, spread = 0;
  };
  Scores ScoresOf(const SeenValue& seen) const;
  void SetInformation(const CensoredSums& sums);

  EStatus status_ = EStatus::NoCases;
  bool ordinal_ = false;
  double mean_ = 0, sd_ = 1;
  double lower_ = -HUGE_VAL, upper_ = HUGE_VAL;  // censored at and beyond them
  std::vector<double> edges_;
  std::vector<double> frequencies_;  // of an ordinal variable
  // Inverse of the information on mean and standard deviation, both in units of the latter.
  double meanMean_ = 0, meanSpread_ = 0, spreadSpread_ = 0;
};

}  // namespace stats
