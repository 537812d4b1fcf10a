// What is there: which values, how many missing ones, and in which patterns. The first pass of
// every run.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "engine/data/CaseSource.h"

// The distinct values of a variable that have cases, as long as they are few.
struct VALUECOUNTS {
  static constexpr std::size_t kMostValues = kCategorySlots;

  std::vector<double> values;  // ascending
  std::vector<double> counts;  // sums of weights
  bool tooMany = false;        // more than kMostValues; the two lists are then empty

  void Add(double value, double weight);
  void Merge(const VALUECOUNTS& other);
};

struct CENSUS {
  // The patterns beyond this many distinct ones are only counted.
  static constexpr std::size_t kMostPatterns = 4096;

  std::int64_t cases = 0;     // selected and with a weight
  std::int64_t complete = 0;  // of these, without any missing value
  double weight = 0;          // sum of weights of the cases
  double completeWeight = 0;
  std::vector<std::int64_t> missing;  // by column
  std::vector<VALUECOUNTS> values;    // by column, of the columns that were asked for
  // A character a column, '1' where the value is missing; the complete cases are not among them.
  std::map<std::string, std::int64_t> patterns;
  std::int64_t otherPatterns = 0;  // cases with patterns beyond the limit

  void Merge(const CENSUS& other);
};

// Counts blocks. `wanted` says for which columns values are listed, `listwise` that only complete
// cases count for them. The result does not depend on the number of threads.
class CCensusTaker {
 public:
  CCensusTaker(const std::vector<bool>& wanted, bool listwise, int threads);
  void Add(const CASEBLOCK& block);
  // For pieces of the cases: counts one, on any thread, and takes the counts in their order.
  CENSUS Count(const CASEBLOCK& block) const;
  void Add(const CENSUS& counted) { census_.Merge(counted); }
  const CENSUS& Result() const { return census_; }

 private:
  void AddCases(const CASEBLOCK& block, std::int64_t first, std::int64_t end, CENSUS& census) const;

  std::vector<std::size_t> wantedColumns_;
  bool listwise_;
  int threads_;
  CENSUS census_;
};
