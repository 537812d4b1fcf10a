#include "statrn32/JmpColumns.h"

#include <algorithm>
#include <zlib.h>

#include "statrn32/ByteReader.h"

namespace statrn32 {
namespace {

constexpr std::string_view kPackedMark("\xEF\xBE\xFE\xCA", 4);
constexpr std::size_t kDoubleKind = 0x01;
constexpr std::size_t kPackedTextKind = 0x09;
constexpr std::size_t kPackedKind = 0x0A;

// Reads what stands before the list of columns, and leaves the reader there.
bool ReadStart(std::string_view bytes, CByteReader* in, JMP_TABLE* out, std::int32_t* columns) {
  constexpr std::string_view kMark("\x07\0\x08\0\0\0", 6);
  constexpr std::size_t kSearched = 8192;
  constexpr std::size_t kBeforeMark = 32;  // with an encoding of the usual length
  const std::size_t mark = bytes.substr(0, kSearched).find(kMark);
  if (mark == std::string_view::npos || mark < kBeforeMark) return false;
  in->Seek(mark - kBeforeMark);
  out->rows = in->I64();
  *columns = in->I32();
  in->Skip(10);
  out->encoding = in->Bytes(in->U32());
  out->encoding.resize(std::min(out->encoding.find('\0'), out->encoding.size()));
  in->Seek(mark + kMark.size() + 10);
  out->version = in->Bytes(in->U32());
  return in->Ok() && out->rows >= 0 && *columns > 0;
}

// The places of the columns: behind two bytes FF whose counts fit to the number of columns.
bool FindPlaces(std::string_view bytes, std::size_t from, std::int32_t columns,
                std::vector<std::size_t>* out) {
  const auto count = static_cast<std::size_t>(columns);
  for (std::size_t at = bytes.find("\xFF\xFF", from); at != std::string_view::npos;
       at = bytes.find("\xFF\xFF", at + 1)) {
    CByteReader in(bytes.substr(at + 2));
    in.Skip(10);
    const std::uint64_t visible = in.U32();
    if (visible + in.U32() != count) continue;
    in.Skip(8 + 6 * count + 28);
    for (;;) {
      const std::size_t place = in.Position();
      if (in.U16() < 0xFFFD) {
        in.Seek(place);
        break;
      }
      in.Skip(in.Unsigned(8));
      if (!in.Ok()) break;
    }
    if (in.I32() != columns || in.Left() < 8 * count) continue;
    for (std::size_t i = 0; i < count; ++i) out->push_back(in.Unsigned(8));
    return true;
  }
  return false;
}

bool ReadColumn(std::string_view bytes, JMP_COLUMN* out) {
  CByteReader in(bytes);
  out->name = in.Bytes(in.U16());
  for (std::uint8_t& part : out->kind) part = in.U8();
  const unsigned first = out->kind[0];
  out->packed = first == kPackedTextKind || first == kPackedKind;
  in.Skip(first == kDoubleKind || first == kPackedKind ? 5 : 4);
  in.Skip(2);
  in.Skip(in.Unsigned(8));
  in.Skip(2);
  in.Skip(in.U32());
  if (!in.Ok()) return false;
  out->values = in.Bytes(in.Left());
  if (!out->packed) return true;
  const std::size_t mark = out->values.find(kPackedMark);
  if (mark == std::string_view::npos) return false;
  out->values.remove_prefix(mark);
  return true;
}

}  // namespace

bool ReadJmpTable(std::string_view bytes, JMP_TABLE* out, std::string* error) {
  CByteReader in(bytes);
  std::int32_t columns = 0;
  std::vector<std::size_t> places;
  if (!ReadStart(bytes, &in, out, &columns) ||
      !FindPlaces(bytes, in.Position(), columns, &places)) {
    *error =
        "its list of columns is not found: the table is damaged or of a version that is not read "
        "here; please save it in JMP as text (*.csv) or as an Excel workbook";
    return false;
  }
  std::vector<std::size_t> ends = places;
  ends.push_back(bytes.size());
  std::sort(ends.begin(), ends.end());
  for (std::size_t i = 0; i < places.size(); ++i) {
    const std::size_t end = *std::upper_bound(ends.begin(), ends.end() - 1, places[i]);
    out->columns.emplace_back();
    if (places[i] >= bytes.size() || end > bytes.size() || end < places[i] ||
        !ReadColumn(bytes.substr(places[i], end - places[i]), &out->columns.back())) {
      *error = "the description of column " + std::to_string(i + 1) + " is damaged or cut off";
      return false;
    }
  }
  return true;
}

bool UnpackJmp(std::string_view values, std::uint64_t* left, std::string* out) {
  constexpr int kGzip = 16 + MAX_WBITS;
  CByteReader in(values);
  in.Skip(kPackedMark.size());
  const std::uint64_t packed = in.Unsigned(8);
  const std::uint64_t plain = in.Unsigned(8);
  const std::string_view bytes = in.Bytes(packed);
  constexpr std::uint64_t kMost = 0xFFFFFFFF;
  const bool sound = in.Ok() && plain <= bytes.size() * kMostUnpacked && plain <= *left;
  if (!sound || plain > kMost || bytes.size() > kMost) return false;
  *left -= plain;
  out->resize(plain);
  z_stream stream{};
  if (inflateInit2(&stream, kGzip) != Z_OK) return false;
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));  // is only read
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(out->data());
  stream.avail_out = static_cast<uInt>(plain);
  const int done = inflate(&stream, Z_FINISH);
  const bool whole = done == Z_STREAM_END && stream.avail_out == 0;
  inflateEnd(&stream);
  return whole;
}

}  // namespace statrn32
