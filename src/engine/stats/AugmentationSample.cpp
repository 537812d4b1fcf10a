#include "engine/stats/AugmentationSample.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace stats {

using Eigen::Index;

int AugmentationVariable::CategoryOf(double underlying) const {
  return static_cast<int>(std::upper_bound(thresholds.begin(), thresholds.end(), underlying) -
                          thresholds.begin());
}

CAugmentationSample::CAugmentationSample(std::vector<AugmentationVariable> variables)
    : variables_(std::move(variables)) {
  for (const AugmentationVariable& variable : variables_)
    hasOrdinal_ = hasOrdinal_ || variable.IsOrdinal();
  const auto p = static_cast<Index>(variables_.size());
  fixedSum_.setZero(p);
  fixedProducts_.setZero(p, p);
}

std::size_t CAugmentationSample::PatternOf(const double* cells) {
  std::string key(variables_.size(), '0');
  for (std::size_t j = 0; j < key.size(); ++j) {
    if (std::isnan(cells[j])) key[j] = '1';
  }
  const auto [at, isNew] = index_.try_emplace(std::move(key), patterns_.size());
  if (isNew) {
    Pattern& pattern = patterns_.emplace_back();
    for (std::size_t j = 0; j < variables_.size(); ++j) {
      const auto variable = static_cast<int>(j);
      (std::isnan(cells[j]) ? pattern.missing : pattern.observed).push_back(variable);
      if (!std::isnan(cells[j]) && variables_[j].IsOrdinal()) pattern.ordinal.push_back(variable);
    }
  }
  return at->second;
}

void CAugmentationSample::AddFixed(const double* cells, double weight) {
  const std::size_t p = variables_.size();
  for (std::size_t j = 0; j < p; ++j) {
    if (std::isnan(cells[j])) continue;
    const double value = weight * cells[j];
    const auto column = static_cast<Index>(j);
    fixedSum_(column) += value;
    for (std::size_t i = j; i < p; ++i) {
      if (!std::isnan(cells[i])) fixedProducts_(static_cast<Index>(i), column) += value * cells[i];
    }
  }
}

void CAugmentationSample::Add(const CaseBlock& block, const std::int64_t* numbers) {
  const std::size_t p = variables_.size();
  std::vector<double> row(p);
  for (std::int64_t k = 0; k < block.cases; ++k) {
    const double* const cells = block.cells + k * block.stride;
    const double weight = block.weights != nullptr ? block.weights[k] : 1;
    if (!(weight > 0)) continue;
    std::size_t missing = 0;
    for (std::size_t j = 0; j < p; ++j) {
      row[j] = (cells[j] - variables_[j].center) / variables_[j].scale;
      missing += std::isnan(row[j]) ? 1 : 0;
    }
    if (missing == p) continue;
    n_ += weight;
    if (!hasOrdinal_) AddFixed(row.data(), weight);
    if (missing == 0 && !hasOrdinal_) continue;
    hasWeights_ = hasWeights_ || weight != 1;
    cells_.insert(cells_.end(), row.begin(), row.end());
    weights_.push_back(weight);
    numbers_.push_back(numbers[k]);
    patternOf_.push_back(static_cast<std::uint32_t>(PatternOf(row.data())));
  }
}

void CAugmentationSample::Finish() {
  fixedProducts_.triangularView<Eigen::StrictlyUpper>() = fixedProducts_.transpose();
  index_.clear();
  order_.resize(Held());
  std::iota(order_.begin(), order_.end(), std::size_t{0});
  std::stable_sort(order_.begin(), order_.end(),
                   [this](std::size_t a, std::size_t b) { return patternOf_[a] < patternOf_[b]; });
  firstMissing_.resize(Held());
  placeOf_.resize(Held());
  missingValues_ = 0;
  for (std::size_t place = 0; place < order_.size(); ++place) {
    placeOf_[order_[place]] = place;
    firstMissing_[place] = missingValues_;
    missingValues_ += patterns_[patternOf_[order_[place]]].missing.size();
  }
  MakeSegments();
  MakeBlocks();
}

void CAugmentationSample::MakeSegments() {
  constexpr std::size_t kMostCases = 256;
  for (std::size_t place = 0; place < order_.size(); ++place) {
    const std::size_t pattern = patternOf_[order_[place]];
    if (segments_.empty() || segments_.back().pattern != pattern ||
        segments_.back().count == kMostCases) {
      segments_.push_back({pattern, place, 0});
    }
    ++segments_.back().count;
  }
}

void CAugmentationSample::MakeBlocks() {
  constexpr std::size_t kFewestCases = 256;
  constexpr std::size_t kMostBlocks = 64;  // each has a matrix of sums
  const std::size_t cases = std::max(kFewestCases, Held() / kMostBlocks + 1);
  for (std::size_t s = 0; s < segments_.size(); ++s) {
    if (blocks_.empty() || blocks_.back().cases >= cases) {
      blocks_.push_back({s, 0, segments_[s].first, 0});
    }
    ++blocks_.back().segments;
    blocks_.back().cases += segments_[s].count;
  }
}

std::size_t CAugmentationSample::PlaceOf(std::int64_t number) const {
  const auto at = std::lower_bound(numbers_.begin(), numbers_.end(), number);
  if (at == numbers_.end() || *at != number) return Held();
  return placeOf_[static_cast<std::size_t>(at - numbers_.begin())];
}

}  // namespace stats
