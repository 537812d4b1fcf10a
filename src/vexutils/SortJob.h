// What the two plans of fqsort share: the task, and the order of keys.
#pragma once

#include <bit>
#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "vexutils/FileSort.h"

// Keys become integers that stand in the order wanted, so that both plans compare and distribute
// plain numbers. The largest integer is no key: the merge marks an exhausted run with it.
inline constexpr std::uint64_t kAfterAllKeys = std::numeric_limits<std::uint64_t>::max();
inline constexpr std::uint64_t kKeyOfNaN = kAfterAllKeys - 1;

inline std::uint64_t OrderedKey(double value, bool descending) {
  if (std::isnan(value)) return kKeyOfNaN;
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  // Adding 0.0 turns -0.0 into 0.0 and leaves every other number as it is.
  const auto bits = std::bit_cast<std::uint64_t>(value + 0.0);
  const std::uint64_t ascending = (bits & kSign) != 0 ? ~bits : bits | kSign;
  return descending ? ~ascending : ascending;
}

// Sorted records are written in pieces that are still in the processor's cache when the system
// takes them over.
inline constexpr std::size_t kPieceBytes = std::size_t{128} << 10;

struct SortJob {
  int file = -1;
  std::int64_t records = 0;
  std::size_t recordBytes = 0;
  std::size_t keyOffset = 0;  // bytes from the start of the record
  bool descending = false;
  std::size_t memory = 0;  // bytes
  const SortProgress* progress = nullptr;

  std::int64_t Offset(std::int64_t record) const {
    return record * static_cast<std::int64_t>(recordBytes);
  }
  std::int64_t Bytes() const { return Offset(records); }

  std::uint64_t KeyOf(const char* record) const {
    double value;
    std::memcpy(&value, record + keyOffset, sizeof value);
    return OrderedKey(value, descending);
  }

  // Whole records that fit a buffer of `bytes`, at least one.
  std::int64_t RecordsIn(std::size_t bytes) const {
    return bytes < recordBytes ? 1 : static_cast<std::int64_t>(bytes / recordBytes);
  }

  // False, with ECANCELED, when a stop is asked for.
  bool Report(double fraction) const {
    if (!*progress || (*progress)(fraction)) return true;
    errno = ECANCELED;
    return false;
  }
};

// The share of a sort's progress at which the sorted copy is complete and only its way back
// remains.
inline constexpr double kCopyComplete = 0.8;
