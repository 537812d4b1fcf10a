// The memo file beside a .dbf file: long texts in numbered blocks.
//
// dBASE III (.dbt): blocks of 512 bytes, a text ends with 0x1A. dBASE IV (.dbt): u16 block size at
// 20; a text begins with FF FF 08 00 and its u32 length, these 8 bytes included. FoxPro (.fpt):
// big-endian, u16 block size at 6; a text begins with u32 kind and u32 length.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "statrn32/InputFile.h"

namespace statrn32 {

class CDbfMemo {
 public:
  // False when there is none, or it cannot be read.
  bool OpenBeside(const std::string& dbf);
  // The text that begins in a block, in the file's own bytes, valid until the next call. Empty for
  // block 0 and for what cannot be read.
  std::string_view Read(std::uint64_t block);

 private:
  std::string_view ReadUntilMark();
  std::string_view ReadBytes(std::int64_t size);

  CInputFile file_;
  bool open_ = false;
  bool foxPro_ = false;
  std::int64_t blockBytes_ = 512;
  std::string text_;
};

}  // namespace statrn32
