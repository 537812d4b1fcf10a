#include "engine/stats/Segments.h"

#include <cmath>
#include <cstring>
#include <stdexcept>

namespace stats {

void CheckShape(const CaseBlock& block, int variables) {
  const bool fits = block.variables == variables && block.cases >= 0 &&
                    (block.cases == 0 || block.cells != nullptr || variables == 0) &&
                    (block.cases <= 1 || block.stride >= variables);
  if (!fits) throw std::invalid_argument("the block of cases has another shape");
}

CSegment::CSegment(int variables)
    : variables_(variables),
      panels_(PaddedLanes(variables) / kLanes),
      cells_(panels_ * kSegmentCases * kLanes),
      weights_(kSegmentCases) {}

bool CSegment::TakeWeight(double weight) {
  if (!(weight > 0) || std::isinf(weight)) {
    ++withoutWeight_;
    return false;
  }
  weights_.Data()[cases_] = weight;
  weighted_ = weighted_ || weight != 1;
  return true;
}

// Whether the case is taken.
bool CSegment::CheckCells(const double* cells, EDeletion deletion) {
  bool missing = false;
  for (int j = 0; j < variables_; ++j) {
    if (std::isnan(cells[j])) missing = true;
    if (std::isinf(cells[j])) finite_ = false;
  }
  if (missing && deletion == EDeletion::Listwise) {
    ++incomplete_;
    return false;
  }
  hasMissing_ = hasMissing_ || missing;
  return true;
}

void CSegment::Pack(const CaseBlock& block, std::int64_t first, std::int64_t end,
                    EDeletion deletion) {
  cases_ = withoutWeight_ = incomplete_ = 0;
  hasMissing_ = weighted_ = false;
  finite_ = true;
  const bool plain =
      block.stride == variables_ &&
      ActiveKernels().allFinite(block.cells + first * block.stride, (end - first) * variables_);
  for (std::int64_t at = first; at < end; ++at) {
    const double* cells = block.cells + at * block.stride;
    if (!TakeWeight(block.weights ? block.weights[at] : 1.0)) continue;
    if (!plain && !CheckCells(cells, deletion)) continue;
    for (int panel = 0; panel < panels_; ++panel) {
      double* to = Panel(panel) + cases_ * kLanes;
      const int lanes = std::min(kLanes, variables_ - panel * kLanes);
      if (lanes == kLanes) {
        std::memcpy(to, cells + panel * kLanes, kLanes * sizeof(double));
      } else {
        for (int l = 0; l < kLanes; ++l) to[l] = l < lanes ? cells[panel * kLanes + l] : 0.0;
      }
    }
    ++cases_;
  }
}

COrigins::COrigins(int variables)
    : known_(static_cast<std::size_t>(variables), false), origin_(PaddedLanes(variables)) {}

void COrigins::Find(const CaseBlock& block) {
  for (int j = 0; j < block.variables; ++j) {
    for (std::int64_t k = 0; k < block.cases && !Known(j); ++k) {
      const double x = block.cells[k * block.stride + j];
      if (!std::isfinite(x)) continue;
      origin_.Data()[j] = x;
      known_[static_cast<std::size_t>(j)] = true;
    }
  }
}

void COrigins::Adopt(const COrigins& other) {
  for (std::size_t j = 0; j < known_.size(); ++j) {
    if (known_[j] || !other.known_[j]) continue;
    origin_.Data()[j] = other.origin_.Data()[j];
    known_[j] = true;
  }
}

}  // namespace stats
