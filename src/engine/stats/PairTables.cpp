#include "engine/stats/PairTables.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "engine/stats/Parallel.h"

namespace stats {

namespace {

std::size_t Area(int rows, int columns) {
  return CellIndex(rows, columns, 0);
}

// Counts rows and columns with a place for missing codes behind the categories; consecutive cases
// go to different tables, because counting the same cell twice in a row makes the processor wait.
class CCounter {
 public:
  CCounter(int rows, int columns) : rows_(rows), columns_(columns) {
    for (auto& table : tables_) std::fill_n(table.begin(), Area(rows + 1, columns + 1), 0);
  }

  void Count(const std::uint8_t* row, const std::uint8_t* column, std::int64_t cases) {
    const auto width = static_cast<std::size_t>(columns_) + 1;
    std::int64_t k = 0;
    for (; k + 4 <= cases; k += 4) {
      ++tables_[0][row[k] * width + column[k]];
      ++tables_[1][row[k + 1] * width + column[k + 1]];
      ++tables_[2][row[k + 2] * width + column[k + 2]];
      ++tables_[3][row[k + 3] * width + column[k + 3]];
    }
    for (; k < cases; ++k) ++tables_[0][row[k] * width + column[k]];
  }

  void AddTo(double* table) const {
    for (int a = 0; a < rows_; ++a) {
      for (int b = 0; b < columns_; ++b) {
        const std::size_t at = CellIndex(a, columns_ + 1, b);
        table[CellIndex(a, columns_, b)] +=
            tables_[0][at] + tables_[1][at] + tables_[2][at] + tables_[3][at];
      }
    }
  }

 private:
  static constexpr std::size_t kPlaces = kMaxCategories + 1;
  static constexpr std::size_t kLargest = kPlaces * kPlaces;
  int rows_, columns_;
  std::array<std::array<std::uint32_t, kLargest>, 4> tables_;
};

}  // namespace

CPairTables::CPairTables(std::vector<int> categories, EDeletion deletion, int threads)
    : categories_(std::move(categories)), threads_(threads), chunk_(categories_, deletion) {
  for (int i = 0; i < Variables(); ++i) {
    margins_.emplace_back(static_cast<std::size_t>(Categories(i)), 0.0);
    for (int j = 0; j < i; ++j) pairs_.emplace_back(Area(Categories(i), Categories(j)), 0.0);
  }
}

void CPairTables::Add(const CodeBlock& block) {
  chunk_.CheckShape(block);
  for (std::int64_t at = 0; at < block.cases; at += CCodeChunk::kCases) {
    chunk_.Take(block, at, std::min(at + CCodeChunk::kCases, block.cases));
    cases_ += chunk_.Cases();
    leftOut_ += chunk_.LeftOut();
    // A piece of work is a variable with all earlier ones; the longest come first.
    ParallelFor(threads_, Variables(), [&](std::int64_t piece) {
      const int i = Variables() - 1 - static_cast<int>(piece);
      std::vector<double> margin(static_cast<std::size_t>(Categories(i)) + 1, 0.0);
      for (std::int64_t k = 0; k < chunk_.Cases(); ++k)
        margin[chunk_.Column(i)[k]] += chunk_.Weights() ? chunk_.Weights()[k] : 1.0;
      std::vector<double>& to = margins_[static_cast<std::size_t>(i)];
      for (std::size_t a = 0; a < to.size(); ++a) to[a] += margin[a];
      for (int j = 0; j < i; ++j) AddPair(chunk_, i, j);
    });
  }
}

void CPairTables::AddPair(const CCodeChunk& chunk, int i, int j) {
  double* table = pairs_[static_cast<std::size_t>(PairIndex(i, j))].data();
  const std::uint8_t* row = chunk.Column(i);
  const std::uint8_t* column = chunk.Column(j);
  const int rows = Categories(i), columns = Categories(j);
  if (const double* weights = chunk.Weights()) {
    for (std::int64_t k = 0; k < chunk.Cases(); ++k) {
      if (row[k] < rows && column[k] < columns) table[row[k] * columns + column[k]] += weights[k];
    }
    return;
  }
  CCounter counter(rows, columns);
  counter.Count(row, column, chunk.Cases());
  counter.AddTo(table);
}

void CPairTables::Merge(const CPairTables& other) {
  if (other.categories_ != categories_)
    throw std::invalid_argument("tables of different variables cannot be merged");
  const auto add = [](std::vector<std::vector<double>>& to,
                      const std::vector<std::vector<double>>& from) {
    for (std::size_t t = 0; t < to.size(); ++t) {
      for (std::size_t a = 0; a < to[t].size(); ++a) to[t][a] += from[t][a];
    }
  };
  add(margins_, other.margins_);
  add(pairs_, other.pairs_);
  cases_ += other.cases_;
  leftOut_ += other.leftOut_;
}

FrequencyTable CPairTables::Table(int i, int j) const {
  if (i == j) throw std::invalid_argument("a variable has no table with itself");
  const std::vector<double>& from =
      pairs_.at(static_cast<std::size_t>(PairIndex(std::max(i, j), std::min(i, j))));
  FrequencyTable table{Categories(i), Categories(j), from};
  if (i > j) return table;
  for (int a = 0; a < table.rows; ++a) {
    for (int b = 0; b < table.columns; ++b)
      table.count[CellIndex(a, table.columns, b)] = from[CellIndex(b, table.rows, a)];
  }
  return table;
}

}  // namespace stats
