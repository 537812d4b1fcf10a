#include "engine/stats/OrdinalPatterns.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace stats {

void COrdinalPatterns::AddCase(const std::string& key, double weight) {
  const char missing = static_cast<char>(kMissingCode);
  const auto gaps = static_cast<std::size_t>(std::count(key.begin(), key.end(), missing));
  if (gaps == key.size()) {
    ++allMissing_;
    return;
  }
  ++cases_;
  if (gaps == 0) ++complete_;
  n_ += weight;
  const auto [at, isNew] = index_.try_emplace(key, Patterns());
  if (isNew) {
    codes_.insert(codes_.end(), key.begin(), key.end());
    frequency_.push_back(0);
  }
  frequency_[static_cast<std::size_t>(at->second)] += weight;
}

void COrdinalPatterns::Add(const CodeBlock& block) {
  if (block.variables != Variables())
    throw std::invalid_argument("the block has other variables than the patterns");
  std::string key(categories_.size(), '\0');
  for (std::int64_t k = 0; k < block.cases; ++k) {
    const double weight = block.weights != nullptr ? block.weights[k] : 1.0;
    if (!(weight > 0) || std::isinf(weight)) continue;
    for (std::size_t j = 0; j < key.size(); ++j) {
      const std::uint8_t code = block.codes[static_cast<std::int64_t>(j) * block.stride + k];
      if (code != kMissingCode && code >= categories_[j])
        throw std::out_of_range("a code is beyond its variable's categories");
      key[j] = static_cast<char>(code);
    }
    AddCase(key, weight);
  }
}

std::int64_t COrdinalPatterns::Find(const std::uint8_t* codes) const {
  const auto at = index_.find(std::string(codes, codes + categories_.size()));
  return at != index_.end() ? at->second : -1;
}

std::int64_t COrdinalPatterns::Bytes() const {
  constexpr std::int64_t kEach = 100;
  return Patterns() * (kEach + 2 * Variables());
}

std::vector<double> COrdinalPatterns::Margin(int variable) const {
  std::vector<double> margin(static_cast<std::size_t>(Categories(variable)), 0.0);
  for (std::int64_t i = 0; i < Patterns(); ++i) {
    const std::uint8_t code = Codes(i)[variable];
    if (code != kMissingCode) margin[code] += Frequency(i);
  }
  return margin;
}

}  // namespace stats
