// The long texts of a Paradox table, in the .mb file beside it.
//
// A memo field is a leader and 10 bytes: u32 place, u32 bytes of the text, u16. The low byte of the
// place is 0xFF for a block of its own, whose text begins at its byte 9; else it numbers an entry
// of 5 bytes in a block of several texts: the entries begin at 12, and hold the text's place and
// size in units of 16 bytes, two bytes, and the bytes used of the last unit. Texts that fit into
// the leader are not in the file.
#pragma once

#include <string>
#include <string_view>

#include "statrn32/InputFile.h"

namespace statrn32 {

class CParadoxMemo {
 public:
  // False when there is no such file.
  bool OpenBeside(const std::string& table);
  // The text of a field, valid until the next call. False when it cannot be found.
  bool Read(std::string_view field, std::string_view* text);

 private:
  bool FindPlace(std::int64_t block, unsigned entry, std::int64_t length, std::int64_t* place);

  CInputFile file_;
  bool open_ = false;
  std::string text_;
};

}  // namespace statrn32
