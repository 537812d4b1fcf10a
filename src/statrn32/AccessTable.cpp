#include "statrn32/AccessTable.h"

#include <algorithm>

#include "statrn32/ByteReader.h"
#include "statrn32/TextDecoder.h"
#include "statrn32/Utf16.h"

namespace statrn32 {
namespace {

constexpr std::size_t kMostColumns = 1024;

// The description without the first 8 bytes of the pages behind the first.
bool ReadDescription(const CAccessPages& pages, std::uint32_t page, std::string* out) {
  constexpr char kTableMark = 2;
  constexpr std::size_t kHeadBytes = 8;
  constexpr int kMostPages = 256;
  std::string part;
  for (int i = 0; page != 0; ++i) {
    if (i == kMostPages || !pages.Read(page, &part) || part[0] != kTableMark) return false;
    CByteReader in(part);
    in.Seek(4);
    page = in.U32();
    out->append(part, i == 0 ? 0 : kHeadBytes, std::string::npos);
  }
  return true;
}

ACCESS_COLUMN ReadColumn(CByteReader* in, bool jet4) {
  constexpr unsigned kFixed = 1;
  ACCESS_COLUMN column;
  column.type = static_cast<ACCESS_TYPE>(in->U8());
  in->Skip(jet4 ? 4 : 0);
  column.number = in->U16();
  column.index = in->U16();
  in->Skip(jet4 ? 2 : 4);
  column.precision = in->U8();
  column.scale = in->U8();
  in->Skip(2);
  column.fixed = (in->U8() & kFixed) != 0;
  in->Skip(jet4 ? 5 : 0);
  column.place = in->U16();
  column.bytes = in->U16();
  return column;
}

// How many bytes the values of a type take; 0 where that differs.
std::size_t BytesOf(ACCESS_TYPE type) {
  switch (type) {
    case ACCESS_TYPE::Byte:
      return 1;
    case ACCESS_TYPE::Int16:
      return 2;
    case ACCESS_TYPE::Int32:
    case ACCESS_TYPE::Float:
    case ACCESS_TYPE::List:
      return 4;
    case ACCESS_TYPE::Money:
    case ACCESS_TYPE::Double:
    case ACCESS_TYPE::Moment:
    case ACCESS_TYPE::Int64:
      return 8;
    case ACCESS_TYPE::Guid:
      return 16;
    case ACCESS_TYPE::Decimal:
      return 17;
    default:
      return 0;
  }
}

}  // namespace

bool ReadAccessTable(const CAccessPages& pages, std::uint32_t page, CTextDecoder* decoder,
                     ACCESS_TABLE* out) {
  const bool jet4 = pages.IsJet4();
  std::string description;
  if (!ReadDescription(pages, page, &description)) return false;
  CByteReader in(description);
  in.Seek(jet4 ? 43 : 23);
  out->anyVariable = in.U16() > 0;
  const std::size_t columns = in.U16();
  in.Skip(4);
  const std::size_t indexes = in.U32();
  out->usageMap = in.U32();
  in.Skip(4);
  in.Skip(indexes * (jet4 ? 12 : 8));
  if (columns > kMostColumns) return false;
  for (std::size_t i = 0; i < columns; ++i) out->columns.push_back(ReadColumn(&in, jet4));
  for (ACCESS_COLUMN& column : out->columns) {
    const std::string_view name = in.Bytes(in.Unsigned(jet4 ? 2 : 1));
    jet4 ? AppendUtf16(name, &column.name) : decoder->Append(name, &column.name);
    if (const std::size_t bytes = BytesOf(column.type); bytes > 0) column.bytes = bytes;
  }
  std::stable_sort(
      out->columns.begin(), out->columns.end(),
      [](const ACCESS_COLUMN& a, const ACCESS_COLUMN& b) { return a.number < b.number; });
  return in.Ok();
}

bool CAccessRow::Split(const CAccessPages& pages, const ACCESS_TABLE& table,
                       std::string_view bytes) {
  bytes_ = bytes;
  ends_.clear();
  const bool jet4 = pages.IsJet4();
  head_ = jet4 ? 2 : 1;
  CByteReader in(bytes);
  columns_ = in.Unsigned(head_);
  const std::size_t maskBytes = (columns_ + 7) / 8;
  if (!in.Ok() || columns_ == 0 || in.Left() < maskBytes) return false;
  mask_ = bytes.substr(bytes.size() - maskBytes);
  return !table.anyVariable || FindVariable(jet4, maskBytes);
}

// Before the mask stands the count of fields, before it, backwards, where each begins and where the
// last one ends.
bool CAccessRow::FindVariable(bool jet4, std::size_t maskBytes) {
  if (!jet4) return FindVariable3(maskBytes);
  if (bytes_.size() < head_ + maskBytes + 2) return false;
  const std::size_t countAt = bytes_.size() - maskBytes - 2;
  CByteReader in(bytes_);
  in.Seek(countAt);
  const std::size_t fields = in.U16();
  if (2 * (fields + 1) > countAt - head_) return false;
  for (std::size_t i = 0; i <= fields; ++i) {
    in.Seek(countAt - 2 * (i + 1));
    ends_.push_back(in.U16());
  }
  return true;
}

// In Jet 3 a place is one byte. For rows beyond 256 bytes there is a list of the fields from which
// on the places count from the next 256 bytes on; it stands backwards before the count.
bool CAccessRow::FindVariable3(std::size_t maskBytes) {
  const std::size_t jumps = (bytes_.size() - 1) / 256;
  if (bytes_.size() < head_ + maskBytes + 1 + jumps) return false;
  const std::size_t countAt = bytes_.size() - maskBytes - 1;
  const auto byteAt = [&](std::size_t at) {
    return static_cast<std::size_t>(static_cast<unsigned char>(bytes_[at]));
  };
  const std::size_t fields = byteAt(countAt);
  if (fields + 1 > countAt - jumps - head_) return false;
  const std::size_t firstAt = countAt - jumps - 1;
  const std::size_t realJumps = (firstAt - fields) / 256 < jumps ? jumps - 1 : jumps;
  std::size_t jump = 0;
  for (std::size_t i = 0; i <= fields; ++i) {
    while (jump < realJumps && i == byteAt(countAt - 1 - jump)) ++jump;
    ends_.push_back(byteAt(firstAt - i) + 256 * jump);
  }
  return true;
}

bool CAccessRow::Bit(const ACCESS_COLUMN& column) const {
  const std::size_t at = column.number / 8;
  if (column.number >= columns_ || at >= mask_.size()) return false;
  return (static_cast<unsigned char>(mask_[at]) >> column.number % 8 & 1) != 0;
}

std::string_view CAccessRow::Field(const ACCESS_COLUMN& column) const {
  if (!Bit(column)) return {};
  const std::size_t end = bytes_.size() - mask_.size();
  if (column.fixed) {
    const std::size_t begin = head_ + column.place;
    return begin <= end && column.bytes <= end - begin ? bytes_.substr(begin, column.bytes)
                                                       : std::string_view();
  }
  if (column.index + 1 >= ends_.size()) return {};
  const std::size_t from = ends_[column.index];
  const std::size_t to = ends_[column.index + 1];
  return from <= to && to <= end ? bytes_.substr(from, to - from) : std::string_view();
}

}  // namespace statrn32
