#include "engine/data/Census.h"

#include <algorithm>
#include <cmath>

#include "engine/stats/Parallel.h"

namespace {

constexpr std::int64_t kSegmentCases = 8192;

template <typename Number>
void AddTo(std::vector<Number>& sums, const std::vector<Number>& more) {
  for (std::size_t i = 0; i < more.size(); ++i) sums[i] += more[i];
}

CENSUS EmptyCensus(std::size_t columns) {
  CENSUS census;
  census.missing.assign(columns, 0);
  census.values.resize(columns);
  return census;
}

}  // namespace

void VALUECOUNTS::Add(double value, double weight) {
  if (tooMany) return;
  const auto at = std::lower_bound(values.begin(), values.end(), value);
  const auto place = at - values.begin();
  if (at != values.end() && *at == value) {
    counts[static_cast<std::size_t>(place)] += weight;
    return;
  }
  if (values.size() == kMostValues) {
    *this = VALUECOUNTS();
    tooMany = true;
    return;
  }
  values.insert(at, value);
  counts.insert(counts.begin() + place, weight);
}

void VALUECOUNTS::Merge(const VALUECOUNTS& other) {
  if (other.tooMany) {
    *this = VALUECOUNTS();
    tooMany = true;
  }
  for (std::size_t i = 0; i < other.values.size(); ++i) Add(other.values[i], other.counts[i]);
}

void CENSUS::Merge(const CENSUS& other) {
  cases += other.cases;
  complete += other.complete;
  weight += other.weight;
  completeWeight += other.completeWeight;
  AddTo(missing, other.missing);
  for (std::size_t j = 0; j < values.size(); ++j) values[j].Merge(other.values[j]);
  otherPatterns += other.otherPatterns;
  for (const auto& [pattern, count] : other.patterns) {
    const auto at = patterns.find(pattern);
    if (at != patterns.end()) {
      at->second += count;
    } else if (patterns.size() < kMostPatterns) {
      patterns.emplace(pattern, count);
    } else {
      otherPatterns += count;
    }
  }
}

CCensusTaker::CCensusTaker(std::vector<bool> wanted, bool listwise, int threads)
    : wanted_(std::move(wanted)),
      listwise_(listwise),
      threads_(threads),
      census_(EmptyCensus(wanted_.size())) {}

void CCensusTaker::Add(const CASEBLOCK& block) {
  const std::int64_t cases = block.cells.cases;
  std::vector<CENSUS> segments(
      static_cast<std::size_t>((cases + kSegmentCases - 1) / kSegmentCases));
  stats::ParallelFor(threads_, static_cast<std::int64_t>(segments.size()), [&](std::int64_t i) {
    CENSUS& segment = segments[static_cast<std::size_t>(i)];
    segment = EmptyCensus(wanted_.size());
    AddCases(block.cells, i * kSegmentCases, std::min((i + 1) * kSegmentCases, cases), segment);
  });
  for (const CENSUS& segment : segments) census_.Merge(segment);
}

void CCensusTaker::AddCases(const stats::CaseBlock& block, std::int64_t first, std::int64_t end,
                            CENSUS& census) const {
  const std::size_t columns = wanted_.size();
  std::string pattern(columns, '0');
  for (std::int64_t i = first; i < end; ++i) {
    const double* const row = block.cells + i * block.stride;
    const double weight = block.weights != nullptr ? block.weights[i] : 1;
    bool complete = true;
    for (std::size_t j = 0; j < columns; ++j) complete = complete && !std::isnan(row[j]);
    ++census.cases;
    census.weight += weight;
    if (complete) {
      ++census.complete;
      census.completeWeight += weight;
    } else {
      for (std::size_t j = 0; j < columns; ++j) {
        const bool missing = std::isnan(row[j]);
        pattern[j] = missing ? '1' : '0';
        census.missing[j] += missing ? 1 : 0;
      }
      ++census.patterns[pattern];
      if (listwise_) continue;
    }
    for (std::size_t j = 0; j < columns; ++j) {
      if (wanted_[j] && !std::isnan(row[j])) census.values[j].Add(row[j], weight);
    }
  }
}
