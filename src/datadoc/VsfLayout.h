// The layout of the system data file (".VSF"), written down once for every reader and writer. The
// byte tables are in docs/file-format.md. Numbers are little-endian; there is no padding and no
// checksum.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "datadoc/DataSet.h"

static_assert(std::endian::native == std::endian::little,
              "cells are moved between files as they stand, so the machine must be little-endian");

inline constexpr std::size_t kVsfHeaderWordBytes = 32;
inline constexpr std::int64_t kVsfRecordCountOffset = 64;
inline constexpr std::size_t kVsfHeaderBytes = 128;  // where the variable blocks begin
inline constexpr std::size_t kVsfDescriptionBytes = 32;
inline constexpr std::size_t kVsfLabelBytes = 8;
inline constexpr std::size_t kVsfBlockBytesBesideName = 260;
inline constexpr std::size_t kCellBytes = sizeof(double);
inline constexpr std::int32_t kVsfTrustedVariables =
    32767;  // above this the blocks must be in the file

// One of the texts that a system data file begins with.
struct VsfHeaderWord {
  std::string_view text;
  int kind;
};
// In the order in which they are compared; the first of a kind is the one that is written.
inline constexpr VsfHeaderWord kVsfHeaderWords[] = {
    {"VEXMOR DATA SYSTEM FILE", kOldFormat},
    {"TORVIK DATA SYSTEM FILE", kOldFormat},
    {"VEXC16 DATA SYSTEM FILE", kNewFormat},
};

// The header word that `firstBytes` begin with; null when they begin with none.
const VsfHeaderWord* FindVsfHeaderWord(std::string_view firstBytes);

// What fills the 32 bytes behind the header text: the document's save pads with spaces, the import
// with zeros.
enum class VsfFiller : char { Spaces = ' ', Zeros = '\0' };

// Bytes of one variable block, and of everything before the cells.
std::int64_t VsfBlockBytes(int kind);
std::int64_t VsfCellsOffset(int kind, std::int64_t variables);
// Bytes of the cells of `records` records.
inline std::int64_t CellBytes(std::int64_t records, std::int64_t variables) {
  return records * variables * static_cast<std::int64_t>(kCellBytes);
}

// Appends the first 128 bytes of a file of the given kind (1 old, 2 new; any other: a blank header
// word).
void AppendVsfHeader(const TORVIKSTRUCT& data, int kind, VsfFiller filler, CString& out);
// Appends the block of variable `index`, counted from 0: texts cut to their widths and filled with
// zeros.
void AppendVsfVariable(const TORVIKSTRUCT& data, std::size_t index, int kind, CString& out);
// Both of the above, for all variables.
CString EncodeVsfDescription(const TORVIKSTRUCT& data, int kind, VsfFiller filler);
