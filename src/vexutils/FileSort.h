// Sorts the records of a file by one of their values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>

inline constexpr int kSortAscending = 0;
inline constexpr int kSortDescending = 1;

// Memory that a sort may use. The keys of the whole file are sorted within it and the records
// gathered from the file; where the keys do not fit, or the file does not fit the machine's free
// memory, it is sorted in runs that are merged.
inline constexpr std::size_t kSortMemoryBytes = std::size_t{256} << 20;

// Told the fraction done, 0 to 1; returns false to stop. Called on the thread that sorts.
using SortProgress = std::function<bool(double)>;

// Sorts `records` records of `recordBytes` bytes each, which stand in `file` from its start, in
// place, by the double at index `key` (counted from 0, in units of 8 bytes). Stable; -0.0 equals
// 0.0; NaN stands after every number in both orders. The file must be open for reading and writing,
// not for appending; afterwards it stands at its start.
//
// A sorted copy is completed in a nameless file in the same folder (or the folder of temporary
// files) before the first record is replaced, so a failure, a full disk or a stop up to then leaves
// the file as it was. While the copy is moved into the file a stop is no longer heeded; only a
// failing disk or the end of the process can leave a part of it unmoved.
//
// Returns 1, or 0 on failure with the reason in errno: EINVAL for a key outside the record, an
// unknown order or more records than the file holds, ECANCELED for a stop, ENOMEM, or what the
// system said. `record`, `work1` and `work2` are buffers of one record each that the caller lends;
// their content afterwards is unspecified.
int fqsort(std::FILE* file, std::int64_t records, double* record, double* work1, double* work2,
           std::size_t recordBytes, int key, int order, const SortProgress& progress = {});

// The same with a memory budget of the caller's. Where the budget is smaller than that, three
// records and the administration of the runs are held all the same.
int fqsortWithin(std::size_t memoryBytes, std::FILE* file, std::int64_t records,
                 std::size_t recordBytes, int key, int order, const SortProgress& progress = {});
