#include "vexutils/SortEntry.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

// A pass distributes by one byte. Wider digits need fewer passes, but their many open ends fall out
// of the cache.
constexpr std::size_t kDigits = 8;
constexpr std::size_t kValues = 256;
using Counts = std::array<std::array<std::size_t, kValues>, kDigits>;

std::size_t Digit(std::uint64_t key, std::size_t digit) {
  return key >> (8 * digit) & 0xff;
}

Counts CountDigits(const SortEntry* entries, std::size_t count) {
  Counts counts{};
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t key = entries[i].Key();
    for (std::size_t digit = 0; digit < kDigits; ++digit) ++counts[digit][Digit(key, digit)];
  }
  return counts;
}

void Distribute(const SortEntry* from, SortEntry* to, std::size_t count, std::size_t digit,
                const std::array<std::size_t, kValues>& counts) {
  std::array<std::size_t, kValues> next;
  std::size_t start = 0;
  for (std::size_t value = 0; value < kValues; ++value) {
    next[value] = start;
    start += counts[value];
  }
  for (std::size_t i = 0; i < count; ++i) to[next[Digit(from[i].Key(), digit)]++] = from[i];
}

}  // namespace

bool IsSorted(const SortEntry* entries, std::size_t count) {
  return std::is_sorted(entries, entries + count,
                        [](const SortEntry& a, const SortEntry& b) { return a.Key() < b.Key(); });
}

SortEntry* SortEntries(SortEntry* entries, SortEntry* spare, std::size_t count) {
  if (count < 2) return entries;
  const Counts counts = CountDigits(entries, count);
  for (std::size_t digit = 0; digit < kDigits; ++digit) {
    const bool sameEverywhere = counts[digit][Digit(entries[0].Key(), digit)] == count;
    if (sameEverywhere) continue;
    Distribute(entries, spare, count, digit, counts[digit]);
    std::swap(entries, spare);
  }
  return entries;
}
