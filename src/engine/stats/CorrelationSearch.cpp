#include "engine/stats/CorrelationSearch.h"

#include <algorithm>
#include <cmath>

#include "engine/stats/Cancel.h"

namespace stats {

namespace {

constexpr double kSmallSlope = 1e-13;
constexpr double kLargestSlope =
    1e-12;  // that counts as converged when steps have no effect any more
constexpr int kMaxIterations = 200;

using Function = std::function<CorrelationLikelihood(double)>;

class CSearch {
 public:
  CSearch(const Function& likelihood, double start) : likelihood_(likelihood) {
    best_.r = std::clamp(start, -0.95, 0.95);
    Evaluate(best_.r);
    // The start may already be too far out for cells with few cases.
    while (!best_.at.valid && std::fabs(best_.r) > 1e-3) Evaluate(best_.r / 2);
  }

  CorrelationMaximum Run(double cases) {
    while (best_.at.valid && best_.iterations < kMaxIterations) {
      if (std::fabs(best_.at.slope) <= kSmallSlope) break;
      Narrow(best_.r, best_.at.slope > 0);
      if (std::fabs(best_.r) == kLargestCorrelation && best_.at.slope * best_.r > 0)
        return Boundary();
      const double next = Next();
      if (next == best_.r) break;
      EvaluateInside(next);
    }
    if (!best_.at.valid || !(std::fabs(best_.at.slope) <= kLargestSlope)) return best_;
    if (IsFlat(cases)) return Boundary();
    best_.status = EStatus::Ok;
    return best_;
  }

 private:
  void Evaluate(double r) {
    StopIfCancelled();
    best_.r = r;
    best_.at = likelihood_(r);
    ++best_.iterations;
  }

  // Steps back toward the point before when the likelihood cannot be computed.
  void EvaluateInside(double r) {
    const double before = best_.r;
    for (int halvings = 0; halvings < 60; ++halvings) {
      Evaluate(r);
      if (best_.at.valid) return;
      Narrow(r, r < before);
      r = (before + r) / 2;
    }
  }

  void Narrow(double r, bool fromBelow) {
    (fromBelow ? low_ : high_) = r;
    (fromBelow ? lowTried_ : highTried_) = true;
  }

  double Next() const {
    double next = best_.at.curve < 0 ? best_.r - best_.at.slope / best_.at.curve
                                     : (best_.at.slope > 0 ? high_ : low_);
    if (next >= high_) next = highTried_ ? (best_.r + high_) / 2 : high_;
    if (next <= low_) next = lowTried_ ? (best_.r + low_) / 2 : low_;
    return next;
  }

  // A slope of zero because the likelihood has reached its limit short of the boundary. A true
  // maximum falls by far more toward both ends.
  bool IsFlat(double cases) const {
    if (-best_.at.curve * cases > 1) return false;
    const double end = best_.r < 0 ? -kLargestCorrelation : kLargestCorrelation;
    const CorrelationLikelihood there = likelihood_(end);
    return there.valid && cases * (best_.at.value - there.value) < 1e-8;
  }

  CorrelationMaximum Boundary() {
    Evaluate(best_.r < 0 ? -kLargestCorrelation : kLargestCorrelation);
    best_.status = EStatus::Boundary;
    return best_;
  }

  const Function& likelihood_;
  CorrelationMaximum best_;
  double low_ = -kLargestCorrelation, high_ = kLargestCorrelation;
  bool lowTried_ = false,
       highTried_ = false;  // whether the likelihood is known to fall beyond them
};

}  // namespace

CorrelationMaximum MaximiseOverCorrelation(const Function& likelihood, double start, double cases) {
  return CSearch(likelihood, start).Run(cases);
}

}  // namespace stats
