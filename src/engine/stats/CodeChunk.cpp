#include "engine/stats/CodeChunk.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

namespace stats {

CCodeChunk::CCodeChunk(const std::vector<int>& categories, EDeletion deletion)
    : categories_(categories), deletion_(deletion) {
  for (const int count : categories_) {
    if (count < 1 || count > kMaxCategories)
      throw std::invalid_argument("an ordinal variable has 1 to 64 categories");
  }
  codes_.resize(categories_.size() * static_cast<std::size_t>(kCases));
}

void CCodeChunk::CheckShape(const CodeBlock& block) const {
  const bool fits = block.variables == static_cast<int>(categories_.size()) && block.cases >= 0 &&
                    (block.cases == 0 || block.codes != nullptr || block.variables == 0) &&
                    (block.variables <= 1 || block.stride >= block.cases);
  if (!fits) throw std::invalid_argument("the block of codes has another shape");
}

void CCodeChunk::FindKept(const CodeBlock& block, std::int64_t first, std::int64_t end) {
  std::vector<std::uint8_t> out(static_cast<std::size_t>(end - first), 0);
  if (block.weights) {
    for (std::size_t k = 0; k < out.size(); ++k) {
      const double weight = block.weights[first + static_cast<std::int64_t>(k)];
      out[k] = weight > 0 && std::isfinite(weight) ? 0 : 1;
    }
  }
  if (deletion_ == EDeletion::Listwise) {
    for (int j = 0; j < block.variables; ++j) {
      const std::uint8_t* column = block.codes + j * block.stride + first;
      for (std::size_t k = 0; k < out.size(); ++k) out[k] |= column[k] == kMissingCode ? 1 : 0;
    }
  }
  kept_.clear();
  for (std::size_t k = 0; k < out.size(); ++k) {
    if (out[k] == 0) kept_.push_back(static_cast<std::int32_t>(k));
  }
}

void CCodeChunk::CopyColumn(const CodeBlock& block, int variable, std::int64_t first,
                            std::int64_t end) {
  const std::uint8_t* from = block.codes + variable * block.stride + first;
  std::uint8_t* to = codes_.data() + variable * kCases;
  if (cases_ == end - first) {
    std::copy_n(from, cases_, to);
  } else {
    for (std::size_t k = 0; k < kept_.size(); ++k) to[k] = from[kept_[k]];
  }
  const auto missing = static_cast<std::uint8_t>(categories_[static_cast<std::size_t>(variable)]);
  std::uint8_t bad = 0;
  for (std::int64_t k = 0; k < cases_; ++k) {
    bad |= to[k] >= missing && to[k] != kMissingCode ? 1 : 0;
    to[k] = std::min(to[k], missing);
  }
  if (bad) throw std::out_of_range("a code is beyond its variable's categories");
}

void CCodeChunk::Take(const CodeBlock& block, std::int64_t first, std::int64_t end) {
  FindKept(block, first, end);
  cases_ = static_cast<std::int64_t>(kept_.size());
  leftOut_ = end - first - cases_;
  for (int j = 0; j < block.variables; ++j) CopyColumn(block, j, first, end);
  weighted_ = block.weights != nullptr;
  weights_.clear();
  if (weighted_) {
    for (const std::int32_t k : kept_) weights_.push_back(block.weights[first + k]);
  }
}

}  // namespace stats
