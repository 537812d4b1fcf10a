// Sorts the records of a file by one of their values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>

inline constexpr int kSortAscending = 0;
inline constexpr int kSortDescending = 1;

// Memory that a sort may use; a file beyond it is sorted in runs that are merged.
inline constexpr std::size_t kSortMemoryBytes = std::size_t{256} << 20;

// Told the fraction done, 0 to 1; returns false to stop.
using SortProgress = std::function<bool(double)>;

// Sorts `records` records of `recordBytes` bytes each, which stand in `file` from its start, in
// place, by the double at index `key` (counted from 0, in units of 8 bytes). Stable; -0.0 equals
// 0.0; NaN stands after every number in both orders. The file must be open for reading and writing.
// Its records are only ever replaced by a complete sorted copy, so that a failure or a stop leaves
// them as they were.
//
// Returns 1, or 0 on failure with the reason in errno (EINVAL for a key outside the record,
// ECANCELED for a stop). `record`, `work1` and `work2` are buffers of one record each that the
// caller lends; their content afterwards is unspecified.
int fqsort(std::FILE* file, std::int64_t records, double* record, double* work1, double* work2,
           std::size_t recordBytes, int key, int order, const SortProgress& progress = {});

// The same with a memory budget of the caller's.
int fqsortWithin(std::size_t memoryBytes, std::FILE* file, std::int64_t records,
                 std::size_t recordBytes, int key, int order, const SortProgress& progress = {});
