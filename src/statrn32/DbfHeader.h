// The header of a .dbf file.
//
// Little-endian. dBASE III and later: version byte; year - 1900, month, day of the last change; u32
// records; u16 bytes of the header; u16 bytes of a record; code page at 29; from 32 on fields of 32
// bytes (name of 11, type at 11, length at 16, decimals at 17, flags at 18) until a byte 0x0D.
// dBASE II: u16 records at 1, u16 bytes of a record at 6, from 8 on fields of 16 bytes (name of 11,
// type at 11, length at 12, decimals at 15); records begin at 521. dBASE 7: fields of 48 bytes from
// 68 on (name of 32, type, length, decimals).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "statrn32/InputFile.h"

namespace statrn32 {

enum class DBF_FAMILY : std::uint8_t { Dbase2, Dbase3, Dbase7, FoxPro };

struct DBF_FIELD {
  std::string name;  // the file's own bytes
  char type = 0;
  std::size_t offset = 0;  // in the record, whose first byte is the deletion mark
  std::size_t length = 0;
  int decimals = 0;
  bool hidden = false;  // FoxPro's own
  int nullBit = -1;     // of the bits that mark missing values; -1: has none
  int shortBit = -1;    // of the bits that mark texts shorter than their field
};

struct DBF_HEADER {
  DBF_FAMILY family = DBF_FAMILY::Dbase3;
  std::uint8_t version = 0;
  std::int64_t records = 0;
  std::int64_t begin = 0;  // of the records
  std::size_t recordBytes = 0;
  std::uint8_t codePage = 0;
  std::vector<DBF_FIELD> fields;
};

// Is this the first byte of a .dbf file?
bool IsDbfVersion(unsigned char version);
bool IsDbfType(char type);

// False with the reason in `error`.
bool ReadDbfHeader(CInputFile* file, DBF_HEADER* out, std::string* error);

// The encoding of a code page id, as iconv knows it; null for 0 and for ids that are not known.
const char* EncodingOfDbf(std::uint8_t codePage);

}  // namespace statrn32
