// Cases on their way from a file to the accumulators. A block is a view: nothing is owned or
// changed, and nothing is kept after the call that it is given to.
#pragma once

#include <cstddef>
#include <cstdint>

namespace stats {

// Case after case. A missing cell is NaN; an infinite cell is an error (EStatus::NotFinite).
// A case whose weight is zero, negative or not finite is left out everywhere.
struct CaseBlock {
  const double* cells = nullptr;
  std::int64_t cases = 0;
  int variables = 0;        // cells used of each case, from its first one on
  std::int64_t stride = 0;  // cells from one case to the next, at least `variables`
  const double* weights =
      nullptr;  // one a case, finite and not negative; null: every case counts 1
};

// Categories counted from 0, variable after variable; kMissingCode stands for a missing value.
struct CodeBlock {
  const std::uint8_t* codes = nullptr;
  std::int64_t cases = 0;
  int variables = 0;
  std::int64_t stride = 0;          // codes from one variable to the next, at least `cases`
  const double* weights = nullptr;  // as above
};

inline constexpr std::uint8_t kMissingCode = 255;
inline constexpr int kMaxCategories = 64;

// What is left out when a value is missing.
enum class EDeletion {
  Listwise,  // every case with a missing value
  Pairwise,  // only what needs the missing value: each variable, each pair has cases of its own
};

}  // namespace stats
