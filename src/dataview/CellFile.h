// Files of cells made from files of cells: what the operations on cases and variables do to the
// scratch file, block by block and in bounded memory.
//
// All functions take open descriptors, count from 0 and write the target from its start unless said
// otherwise. False on failure with the reason in errno: ECANCELED for a stop by `progress`, EIO for
// a source that ends early.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

class CCaseSelection;

struct CellShape {
  std::int64_t records = 0;
  std::int32_t variables = 0;

  std::int64_t RecordBytes() const { return std::int64_t{variables} * 8; }
  std::int64_t Bytes() const { return records * RecordBytes(); }
};

// Told the fraction done, 0 to 1; returns false to stop. May be empty.
using CellProgress = std::function<bool(double)>;

// Zeros at an offset; the space is really taken.
bool WriteZeros(int file, std::int64_t offset, std::int64_t bytes);

// All records and `count` more before record `position`: zeros, or records of `filler` from its
// byte `fillerOffset` on.
bool CopyWithRecords(int from, const CellShape& shape, std::int64_t position, std::int64_t count,
                     int to, const CellProgress& progress, int filler = -1,
                     std::int64_t fillerOffset = 0);

// All records but those from `first` to `end`.
bool CopyWithoutRecords(int from, const CellShape& shape, std::int64_t first, std::int64_t end,
                        int to, const CellProgress& progress);

// Of each record the variables that are flagged, to `toOffset` of the target.
bool CopyVariables(int from, const CellShape& shape, const std::vector<bool>& flags, int to,
                   std::int64_t toOffset, const CellProgress& progress);

// Each record with variables added: `added` has a flag for each variable of the result, set for
// those that are zero or come, in order, from the records of `filler`.
bool CopyWithVariables(int from, const CellShape& shape, const std::vector<bool>& added, int to,
                       const CellProgress& progress, int filler = -1,
                       std::int64_t fillerOffset = 0);

// Of the records that the selection keeps, the variables that are flagged; `kept` counts them. A
// target below 0 only counts.
bool CopySelected(int from, const CellShape& shape, const CCaseSelection& selection,
                  const std::vector<bool>& flags, int to, std::int64_t& kept,
                  const CellProgress& progress);
