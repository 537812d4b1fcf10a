// The layout of the DSF file, a moment matrix and a row of means a group. The byte tables are in
// docs/file-format.md. Numbers are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "host/Types.h"

inline constexpr std::string_view kDsfHeaderText = "VEXMOR SYSTEM DATA FILE";
inline constexpr std::size_t kDsfHeaderBytes = 64;  // the text, padded with blanks
inline constexpr std::int64_t kDsfVariablesOffset = 68;
inline constexpr std::int64_t kDsfNamesOffset = 72;
inline constexpr std::size_t kDsfWrittenNameBytes = 16;

// Cells of the lower triangle of a matrix of `variables` rows.
constexpr std::int64_t DsfTriangle(std::int64_t variables) {
  return variables * (variables + 1) / 2;
}

// Bytes from the names of one group to those of the next as a reader and as a writer count them.
// They differ, and neither is the size of what a writer writes: files of several groups that other
// versions of the package made depend on both. `variables` must be one that DsfFits has accepted.
constexpr std::int64_t DsfReadStride(std::int64_t variables) {
  return (DsfTriangle(variables) + 2 * variables) * 8 + 140;
}
constexpr std::int64_t DsfWriteStride(std::int64_t variables) {
  return (DsfTriangle(variables) + 2 * variables) * 8 + 76;
}

// Bytes from the names to the end of a group.
constexpr std::int64_t DsfGroupBytes(std::int64_t variables, std::int64_t nameBytes) {
  return variables * nameBytes + (DsfTriangle(variables) + variables) * 8;
}

// Could a file of `fileBytes` hold a group of so many variables?
constexpr bool DsfFits(std::int64_t variables, std::int64_t fileBytes) {
  return variables >= 1 && DsfTriangle(variables) <= fileBytes / 8 &&
         kDsfNamesOffset + DsfGroupBytes(variables, 0) <= fileBytes;
}

// Where the names of group `group`, counted from 0, are read; -1 when the file does not hold the
// group.
std::int64_t DsfReadOffset(std::int64_t variables, std::int64_t group, std::int64_t nameBytes,
                           std::int64_t fileBytes);

// How many groups the file holds for a reader of names of 16 bytes; 0 when it is no DSF file.
std::int64_t CountDsfGroups(const CString& fileName);
