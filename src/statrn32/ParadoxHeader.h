// The header of a Paradox table.
//
// Little-endian: u16 bytes of a row; u16 bytes of the header; u8 kind (0 with a key, 2 without; the
// others are indexes); u8 bytes of a block in units of 1,024; u32 rows; at 0x0C u16 blocks, u16 the
// first and the last block; 0x21 u16 fields; 0x25 u32 not 0 in an encrypted table of version 3 and
// 0xFF00FF00 in later ones, which have that number at 0x5C; 0x39 version (3 to 12); from version 5
// on 0x6A code page. At 0x58, from version 5 on at 0x78: two bytes a field (type and size), 4
// bytes, 4 bytes a field, the table's name (79 bytes, in version 12 261), the fields' names, each
// closed by a NUL, and in tables that we write u16 a field (its number) and the name of the sort
// order.
//
// Block n (from 1) begins at header + (n - 1) x block: u16 next block, u16 the one before, i16
// place of the last row behind these 6 bytes, then the rows. Numbers in rows are big-endian and
// their bits are turned so that they sort as bytes; a field of zeros is missing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "statrn32/InputFile.h"

namespace statrn32 {

enum class PARADOX_TYPE : std::uint8_t {
  Text = 1,
  Date = 2,
  Int16 = 3,
  Int32 = 4,
  Money = 5,
  Double = 6,
  Logical = 9,
  Memo = 0x0C,
  Blob = 0x0D,
  FormattedMemo = 0x0E,
  Object = 0x0F,
  Graphic = 0x10,
  Time = 0x14,
  Moment = 0x15,
  Counter = 0x16,
  Decimal = 0x17,
  Bytes = 0x18,
};

inline constexpr std::size_t kParadoxBlockHead = 6;
inline constexpr unsigned kParadoxPlain = 0xFF00FF00;  // at 0x25, of versions 4 and later

struct PARADOX_FIELD {
  std::string name;  // the file's own bytes
  PARADOX_TYPE type = PARADOX_TYPE::Text;
  std::size_t offset = 0;
  std::size_t bytes = 0;
  int decimals = 0;  // of a decimal
};

struct PARADOX_HEADER {
  int version = 0;
  int codePage = 0;  // 0 where the file does not tell
  std::int64_t rows = 0;
  std::size_t rowBytes = 0;
  std::int64_t headerBytes = 0;
  std::int64_t blockBytes = 0;
  std::int64_t firstBlock = 0;
  std::vector<PARADOX_FIELD> fields;
};

// False with the reason in `error`.
bool ReadParadoxHeader(CInputFile* file, PARADOX_HEADER* out, std::string* error);

}  // namespace statrn32
