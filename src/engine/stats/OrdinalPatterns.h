// The different answers to ordinal variables, each once, with their frequencies.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/stats/Blocks.h"

namespace stats {

// A case with a missing code belongs to a pattern of its own; one that has nothing but missing
// codes, or no weight above zero, to none. Patterns stand in the order of their first cases.
// Memory: about 100 bytes and one a variable for each pattern.
class COrdinalPatterns {
 public:
  // categories[j]: 1 to kMaxCategories of variable j.
  explicit COrdinalPatterns(std::vector<int> categories) : categories_(std::move(categories)) {}

  // std::invalid_argument when the variables are not as many, std::out_of_range for a code that is
  // neither below its variable's categories nor kMissingCode.
  void Add(const CodeBlock& block);

  int Variables() const { return static_cast<int>(categories_.size()); }
  int Categories(int variable) const { return categories_[static_cast<std::size_t>(variable)]; }
  std::int64_t Patterns() const { return static_cast<std::int64_t>(frequency_.size()); }
  // One code a variable.
  const std::uint8_t* Codes(std::int64_t pattern) const {
    return codes_.data() + static_cast<std::size_t>(pattern) * categories_.size();
  }
  double Frequency(std::int64_t pattern) const {
    return frequency_[static_cast<std::size_t>(pattern)];
  }
  // -1 when no case has these codes.
  std::int64_t Find(const std::uint8_t* codes) const;

  double N() const { return n_; }                // sum of weights
  std::int64_t Cases() const { return cases_; }  // that belong to a pattern
  std::int64_t Complete() const { return complete_; }
  std::int64_t AllMissing() const { return allMissing_; }
  std::int64_t Bytes() const;  // of memory, roughly
  // Sums of weights by category of a variable.
  std::vector<double> Margin(int variable) const;

 private:
  void AddCase(const std::string& key, double weight);

  std::vector<int> categories_;
  std::unordered_map<std::string, std::int64_t> index_;
  std::vector<std::uint8_t> codes_;
  std::vector<double> frequency_;
  double n_ = 0;
  std::int64_t cases_ = 0, complete_ = 0, allMissing_ = 0;
};

}  // namespace stats
