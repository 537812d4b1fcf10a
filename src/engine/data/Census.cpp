#include "engine/data/Census.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/stats/Parallel.h"

namespace {

constexpr std::int64_t kSegmentCases = 8192;

template <typename Number>
void AddTo(std::vector<Number>& sums, const std::vector<Number>& more) {
  for (std::size_t i = 0; i < more.size(); ++i) sums[i] += more[i];
}

// Counts values; small whole numbers, which most categories are, in a table.
class CValueCounter {
 public:
  // NaN is not counted.
  void Add(double value, double weight) {
    if (value >= 0 && value < kTable) {
      const auto at = static_cast<std::size_t>(value);
      if (static_cast<double>(at) == value) {
        table_[at] += weight;
        return;
      }
    }
    if (!std::isnan(value)) others_.Add(value, weight);
  }

  VALUECOUNTS Result() const {
    VALUECOUNTS counts = others_;
    for (std::size_t k = 0; k < table_.size(); ++k) {
      if (table_[k] > 0) counts.Add(static_cast<double>(k), table_[k]);
    }
    return counts;
  }

 private:
  static constexpr std::size_t kTable = 32;
  std::array<double, kTable> table_{};
  VALUECOUNTS others_;
};

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

CCensusTaker::CCensusTaker(const std::vector<bool>& wanted, bool listwise, int threads)
    : listwise_(listwise), threads_(threads), census_(EmptyCensus(wanted.size())) {
  for (std::size_t j = 0; j < wanted.size(); ++j) {
    if (wanted[j]) wantedColumns_.push_back(j);
  }
}

void CCensusTaker::Add(const CASEBLOCK& block) {
  const std::int64_t cases = block.cells.cases;
  std::vector<CENSUS> segments(
      static_cast<std::size_t>((cases + kSegmentCases - 1) / kSegmentCases));
  stats::ParallelFor(threads_, static_cast<std::int64_t>(segments.size()), [&](std::int64_t i) {
    CENSUS& segment = segments[static_cast<std::size_t>(i)];
    segment = EmptyCensus(census_.missing.size());
    AddCases(block, i * kSegmentCases, std::min((i + 1) * kSegmentCases, cases), segment);
  });
  for (const CENSUS& segment : segments) census_.Merge(segment);
}

CENSUS CCensusTaker::Count(const CASEBLOCK& block) const {
  CENSUS census = EmptyCensus(census_.missing.size());
  AddCases(block, 0, block.cells.cases, census);
  return census;
}

void CCensusTaker::AddCases(const CASEBLOCK& block, std::int64_t first, std::int64_t end,
                            CENSUS& census) const {
  const stats::CaseBlock& cases = block.cells;
  const std::size_t columns = census.missing.size();
  std::vector<CValueCounter> counters(wantedColumns_.size());
  std::string pattern(columns, '0');
  for (std::int64_t i = first; i < end; ++i) {
    const double* const row = cases.cells + i * cases.stride;
    const double weight = cases.weights != nullptr ? cases.weights[i] : 1;
    std::size_t missing = 0;
    for (std::size_t j = 0; j < columns && !block.complete; ++j) {
      missing += std::isnan(row[j]) ? 1 : 0;
    }
    ++census.cases;
    census.weight += weight;
    if (missing == 0) {
      ++census.complete;
      census.completeWeight += weight;
    } else {
      for (std::size_t j = 0; j < columns; ++j) {
        pattern[j] = std::isnan(row[j]) ? '1' : '0';
        census.missing[j] += std::isnan(row[j]) ? 1 : 0;
      }
      ++census.patterns[pattern];
      if (listwise_) continue;
    }
    for (std::size_t k = 0; k < counters.size(); ++k)
      counters[k].Add(row[wantedColumns_[k]], weight);
  }
  for (std::size_t k = 0; k < counters.size(); ++k) {
    census.values[wantedColumns_[k]] = counters[k].Result();
  }
}
