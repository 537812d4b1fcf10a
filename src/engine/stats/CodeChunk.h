// A stretch of coded cases, checked, without the cases that are left out.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/stats/Blocks.h"

namespace stats {

class CCodeChunk {
 public:
  static constexpr std::int64_t kCases = 8192;  // two columns of them stay in the innermost cache

  // categories[j]: 1 to kMaxCategories (else std::invalid_argument).
  CCodeChunk(const std::vector<int>& categories, EDeletion deletion);

  // Throws std::invalid_argument for another number of variables or an impossible shape.
  void CheckShape(const CodeBlock& block) const;

  // Takes the cases [first, end), at most kCases, that have a weight above zero and, listwise, no
  // missing code. Throws std::out_of_range for a code that is neither a category nor kMissingCode.
  void Take(const CodeBlock& block, std::int64_t first, std::int64_t end);

  std::int64_t Cases() const { return cases_; }
  std::int64_t LeftOut() const { return leftOut_; }
  // Codes of a variable; a missing one is the number of its categories.
  const std::uint8_t* Column(int variable) const { return codes_.data() + variable * kCases; }
  const double* Weights() const { return weighted_ ? weights_.data() : nullptr; }  // null: all 1

 private:
  void FindKept(const CodeBlock& block, std::int64_t first, std::int64_t end);
  void CopyColumn(const CodeBlock& block, int variable, std::int64_t first, std::int64_t end);

  std::vector<int> categories_;
  EDeletion deletion_;
  std::int64_t cases_ = 0, leftOut_ = 0;
  bool weighted_ = false;
  std::vector<std::uint8_t> codes_;
  std::vector<std::int32_t> kept_;  // positions within the stretch
  std::vector<double> weights_;
};

}  // namespace stats
