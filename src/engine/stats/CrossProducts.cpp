#include "engine/stats/CrossProducts.h"

#include <cmath>
#include <stdexcept>
#include <utility>

#include "engine/stats/CompensatedDot.h"
#include "engine/stats/Segments.h"

namespace stats {

namespace {

std::size_t TriangleIndex(int i, int j) {
  if (i < j) std::swap(i, j);
  return static_cast<std::size_t>(i) * (static_cast<std::size_t>(i) + 1) / 2 +
         static_cast<std::size_t>(j);
}

// What one group of cases adds up to.
class CGroup {
 public:
  explicit CGroup(int variables)
      : variables_(variables),
        columns_((variables + 1) * kSegmentCases),
        weighted_(2 * kSegmentCases),
        high_(TriangleIndex(variables + 1, 0)),
        low_(high_.size()) {}

  void Add(const CSegment& segment) {
    Turn(segment);
    cases_ += segment.Cases();
    finite_ = finite_ && segment.Finite();
    // Beyond the cases stand zeros.
    constexpr std::int64_t kMultiple = 16;
    const std::int64_t count = (segment.Cases() + kMultiple - 1) / kMultiple * kMultiple;
    const CompensatedDot dot = ActiveCompensatedDot();
    for (int i = 0; i <= variables_; ++i) {
      const double* left = Column(i);
      if (segment.Weighted()) left = TakeWeights(segment, i);
      for (int j = 0; j <= i; ++j) {
        const std::size_t at = TriangleIndex(i, j);
        dot(left, Column(j), count, high_[at], low_[at]);
        if (segment.Weighted()) {
          double rest = 0, error = 0;
          dot(left + kSegmentCases, Column(j), count, rest, error);
          low_[at] += rest;
        }
      }
    }
  }

  void AddTo(std::vector<Quad>& sums, std::int64_t& cases, bool& finite) const {
    for (std::size_t at = 0; at < sums.size(); ++at) sums[at] += Quad(high_[at]) + low_[at];
    cases += cases_;
    finite = finite && finite_;
  }

 private:
  double* Column(int j) { return columns_.Data() + j * kSegmentCases; }

  // Variable after variable, the constant last.
  void Turn(const CSegment& segment) {
    for (int j = 0; j <= variables_; ++j) {
      double* const to = Column(j);
      const double* const from = j < variables_ ? segment.Panel(j / kLanes) + j % kLanes : nullptr;
      for (std::int64_t k = 0; k < segment.Cases(); ++k)
        to[k] = from != nullptr ? from[k * kLanes] : 1.0;
      std::fill(to + segment.Cases(), to + kSegmentCases, 0.0);
    }
  }

  // Weight times value, and behind it what the product has lost in rounding.
  const double* TakeWeights(const CSegment& segment, int i) {
    double* const to = weighted_.Data();
    const double* const x = Column(i);
    for (std::int64_t k = 0; k < kSegmentCases; ++k) {
      const double weight = k < segment.Cases() ? segment.Weights()[k] : 0;
      to[k] = weight * x[k];
      to[kSegmentCases + k] = std::fma(weight, x[k], -to[k]);
    }
    return to;
  }

  int variables_;
  CAlignedBuffer columns_;
  CAlignedBuffer weighted_;
  std::vector<double> high_, low_;
  std::int64_t cases_ = 0;
  bool finite_ = true;
};

}  // namespace

CCrossProducts::CCrossProducts(int variables)
    : variables_(variables), sums_(TriangleIndex(variables + 1, 0), Quad(0)) {}

void CCrossProducts::Add(const CaseBlock& block) {
  CheckShape(block, variables_);
  SumInGroups<CGroup>(
      block, EDeletion::Listwise, 1, [this] { return CGroup(variables_); },
      [](CGroup& group, CSegment& segment) { group.Add(segment); },
      [this](const CGroup& group) { group.AddTo(sums_, cases_, finite_); });
}

void CCrossProducts::Merge(const CCrossProducts& other) {
  if (other.variables_ != variables_) {
    throw std::invalid_argument("the sums are those of another number of variables");
  }
  for (std::size_t at = 0; at < sums_.size(); ++at) sums_[at] += other.sums_[at];
  cases_ += other.cases_;
  finite_ = finite_ && other.finite_;
}

EStatus CCrossProducts::CheckSpread(int i) const {
  constexpr double kSmallest = 1e-280;
  const auto squares = static_cast<double>(Sum(i, i));
  const bool zeros = squares == 0 && Sum(i, variables_) == 0;
  if (!std::isfinite(squares) || (squares < kSmallest && !zeros)) return EStatus::NotFinite;
  // What is left of a variable whose values are all equal, relative to its squares.
  constexpr double kNothing = 1e-28;
  return Centred(i, i) > Sum(i, i) * Quad(kNothing) ? EStatus::Ok : EStatus::Constant;
}

Quad CCrossProducts::Sum(int i, int j) const {
  return sums_[TriangleIndex(i, j)];
}

Quad CCrossProducts::Mean(int i) const {
  return Sum(i, variables_) / N();
}

Quad CCrossProducts::Centred(int i, int j) const {
  return Sum(i, j) - Sum(i, variables_) * Sum(j, variables_) / N();
}

}  // namespace stats
