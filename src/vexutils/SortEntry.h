// A record's key and row, and the sort of them in memory.
#pragma once

#include <cstddef>
#include <cstdint>

// Twelve bytes: with a key of eight-byte alignment it would be sixteen, a third more to move in
// every pass.
struct SortEntry {
  std::uint32_t keyLow;
  std::uint32_t keyHigh;
  std::uint32_t row;

  static SortEntry Make(std::uint64_t key, std::uint32_t row) {
    return {static_cast<std::uint32_t>(key), static_cast<std::uint32_t>(key >> 32), row};
  }
  std::uint64_t Key() const { return std::uint64_t{keyHigh} << 32 | keyLow; }
};

inline constexpr std::int64_t kMaxSortEntries = std::int64_t{1} << 32;

bool IsSorted(const SortEntry* entries, std::size_t count);

// Sorts by key, equal keys in the order they had. `spare` has room for as many entries; the sorted
// ones stand in the array that is returned, which is one of the two.
SortEntry* SortEntries(SortEntry* entries, SortEntry* spare, std::size_t count);
