// Cuts blocks of cases into short segments that stay in the processor's cache, packed in panels.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "engine/stats/AlignedBuffer.h"
#include "engine/stats/Blocks.h"
#include "engine/stats/Parallel.h"

namespace stats {

inline constexpr std::int64_t kSegmentCases = 256;
inline constexpr std::int64_t kGroupCases = 32 * kSegmentCases;  // what one piece of work takes

// Throws std::invalid_argument when the block does not have `variables` variables or its shape is
// impossible.
void CheckShape(const CaseBlock& block, int variables);

// Up to kSegmentCases cases in panels (Kernels.h). Lanes beyond the variables hold 0.
class CSegment {
 public:
  explicit CSegment(int variables);

  // Takes the cases [first, end) of the block that have a weight above zero and, listwise, no
  // missing value; counts the others.
  void Pack(const CaseBlock& block, std::int64_t first, std::int64_t end, EDeletion deletion);

  int Variables() const { return variables_; }
  int Panels() const { return panels_; }
  std::int64_t Cases() const { return cases_; }
  std::int64_t WithoutWeight() const { return withoutWeight_; }
  std::int64_t Incomplete() const { return incomplete_; }  // left out for a missing value
  bool HasMissing() const { return hasMissing_; }          // among the cases taken
  bool Finite() const { return finite_; }
  bool Weighted() const { return weighted_; }
  double* Panel(int panel) { return cells_.Data() + panel * kSegmentCases * kLanes; }
  const double* Panel(int panel) const { return cells_.Data() + panel * kSegmentCases * kLanes; }
  const double* Weights() const { return weights_.Data(); }

 private:
  bool TakeWeight(double weight);
  bool CheckCells(const double* cells, EDeletion deletion);

  int variables_;
  int panels_;
  std::int64_t cases_ = 0, withoutWeight_ = 0, incomplete_ = 0;
  bool hasMissing_ = false, finite_ = true, weighted_ = false;
  CAlignedBuffer cells_;
  CAlignedBuffer weights_;
};

// A value near those of each variable, from which means are counted, so that they keep their digits
// whatever the offset of the data: the first cell that is there.
class COrigins {
 public:
  explicit COrigins(int variables);

  void Find(const CaseBlock& block);  // for the variables that have none yet
  void Adopt(const COrigins& other);  // likewise, from other cases' origins
  double At(int variable) const { return origin_.Data()[variable]; }  // 0 while there is none
  const double* Panel(int panel) const { return origin_.Data() + panel * kLanes; }
  bool Known(int variable) const { return known_[static_cast<std::size_t>(variable)]; }

 private:
  std::vector<bool> known_;
  CAlignedBuffer origin_;
};

// Sums over a block in groups of kGroupCases cases, several at a time on `threads` threads: makes a
// State for each group by `make`, lets `add` take the group's segments in order, and hands the
// states to `merge` in the order of the cases. What comes out does not depend on `threads`.
template <class State, class Make, class Add, class Merge>
void SumInGroups(const CaseBlock& block, EDeletion deletion, int threads, const Make& make,
                 const Add& add, const Merge& merge) {
  constexpr std::int64_t kAtOnce = 8;  // bounds the memory, whatever the block's length
  const std::int64_t groups = (block.cases + kGroupCases - 1) / kGroupCases;
  for (std::int64_t from = 0; from < groups; from += kAtOnce) {
    std::vector<std::optional<State>> states(
        static_cast<std::size_t>(std::min(kAtOnce, groups - from)));
    ParallelFor(threads, static_cast<std::int64_t>(states.size()), [&](std::int64_t i) {
      State state = make();
      CSegment segment(block.variables);
      const std::int64_t begin = (from + i) * kGroupCases;
      const std::int64_t end = std::min(begin + kGroupCases, block.cases);
      for (std::int64_t at = begin; at < end; at += kSegmentCases) {
        segment.Pack(block, at, std::min(at + kSegmentCases, end), deletion);
        add(state, segment);
      }
      states[static_cast<std::size_t>(i)].emplace(std::move(state));
    });
    for (const std::optional<State>& state : states) merge(*state);
  }
}

}  // namespace stats
