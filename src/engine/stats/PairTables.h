// Frequency tables of all pairs of ordinal variables, from one pass over the cases.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/stats/Blocks.h"
#include "engine/stats/CodeChunk.h"

namespace stats {

// Two-way tables lie row after row.
inline std::size_t CellIndex(int row, int columns, int column) {
  return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
         static_cast<std::size_t>(column);
}

// Frequencies (sums of weights).
struct FrequencyTable {
  int rows = 0, columns = 0;
  std::vector<double> count;

  double At(int row, int column) const { return count[CellIndex(row, columns, column)]; }
};

// The index of the pair (i, j), j < i, among the elements below the diagonal, by rows.
inline std::int64_t PairIndex(int i, int j) {
  return static_cast<std::int64_t>(i) * (i - 1) / 2 + j;
}

// Memory: the categories of two variables multiplied, for every pair; it does not grow with the
// cases. A case whose weight is zero, negative or no number is left out. Under listwise deletion a
// case with any missing code is left out of everything; under pairwise deletion a margin holds the
// variable's own cases and a table those that have both. The result does not depend on the number
// of threads.
class CPairTables {
 public:
  // categories[j]: 1 to kMaxCategories of variable j (else std::invalid_argument).
  CPairTables(std::vector<int> categories, EDeletion deletion, int threads = 1);

  // std::invalid_argument when the variables are not as many, std::out_of_range for a code that is
  // neither below its variable's categories nor kMissingCode.
  void Add(const CodeBlock& block);
  void Merge(const CPairTables& other);

  int Variables() const { return static_cast<int>(categories_.size()); }
  int Categories(int variable) const { return categories_[static_cast<std::size_t>(variable)]; }
  const std::vector<double>& Margin(int variable) const {
    return margins_[static_cast<std::size_t>(variable)];
  }
  FrequencyTable Table(int i, int j) const;          // rows: categories of i; i and j differ
  std::int64_t Cases() const { return cases_; }      // cases counted (listwise: complete ones)
  std::int64_t LeftOut() const { return leftOut_; }  // without a weight or (listwise) incomplete

 private:
  void AddPair(const CCodeChunk& chunk, int i, int j);

  std::vector<int> categories_;
  int threads_;
  std::int64_t cases_ = 0;
  std::int64_t leftOut_ = 0;
  std::vector<std::vector<double>> margins_;
  std::vector<std::vector<double>> pairs_;  // by PairIndex; rows: the later variable
  CCodeChunk chunk_;
};

}  // namespace stats
