// Where the columns of a JMP table stand, and their bytes.
//
// Little-endian. The bytes 07 00 08 00 00 00 of the header stand behind i64 rows, i32 columns, ten
// bytes and the encoding's name (u32 length, text); behind them an f64, a u16 and the text of the
// program's version. The list of columns is found behind two bytes FF: ten bytes, u32 visible and
// u32 hidden columns, 8 bytes, 4 and 2 bytes a column, 28 bytes, blocks (u16 FFFD to FFFF, i64
// size, bytes), i32 columns, i64 place of each.
//
// A column: u16 length and text of its name; six bytes that tell its kind (seven of doubles); 4
// bytes, u8, u8, i64 size and bytes of its properties; u16, u32 size and bytes of a list; its
// values, to the next column's place. Compressed values are EF BE FE CA, u64 size, u64 size when
// unpacked, and a gzip stream.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace statrn32 {

struct JMP_COLUMN {
  std::string_view name;
  std::array<std::uint8_t, 6> kind{};
  std::string_view values;  // as they stand in the file
  bool packed = false;
};

struct JMP_TABLE {
  std::int64_t rows = 0;
  std::string encoding;
  std::string version;
  std::vector<JMP_COLUMN> columns;
};

// The views lead into `bytes`. False with the reason in `error`.
bool ReadJmpTable(std::string_view bytes, JMP_TABLE* out, std::string* error);

// A byte cannot hold more than these.
inline constexpr std::uint64_t kMostUnpacked = 1100;

// The values of a packed column. False when they are damaged or take more than the `left` bytes,
// which become fewer.
bool UnpackJmp(std::string_view values, std::uint64_t* left, std::string* out);

}  // namespace statrn32
