#include "statrn32/DbfFiles.h"

#include "statrn32/ByteReader.h"
#include "statrn32/DbfHeader.h"
#include "statrn32/Formats.h"

namespace statrn32 {

constexpr NAME_RULES kDbfNames = {10, "", "_", true, true, false, {}};
constexpr LIMITS kDbfLimits = {
    .records = 1'000'000'000,
    .variables = 255,
    .textBytes = 254,
    .largest = 1e308,
    .remark =
        "Numbers have at most 20 characters, about 13 to 17 digits; letters outside "
        "Windows-1252 are lost; an empty text and a missing one are the same."};

// Only the first byte says what the file is: the rest of the header must fit to it.
bool IsDbf(std::string_view first) {
  if (first.size() < 33 || !IsDbfVersion(static_cast<unsigned char>(first[0]))) return false;
  const bool second = first[0] == 0x02;
  const bool seventh = first[0] == 0x04 || static_cast<unsigned char>(first[0]) == 0x8C;
  CByteReader in(first.substr(second ? 3 : 1));
  const unsigned parts[] = {in.U8(), in.U8(), in.U8()};
  const bool dated = second || (parts[1] <= 12 && parts[2] <= 31);
  const std::size_t type = second ? 19 : seventh ? 100 : 43;
  // A header without any field ends at once.
  const std::size_t fields = second ? 8 : seventh ? 68 : 32;
  if (type >= first.size()) return dated && !seventh && first[fields] == '\r';
  return dated && IsDbfType(first[type]);
}

}  // namespace statrn32
