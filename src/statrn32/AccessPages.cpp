#include "statrn32/AccessPages.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "statrn32/ByteReader.h"

namespace statrn32 {
namespace {

constexpr std::size_t kJet3PageBytes = 2048;
constexpr std::size_t kJet4PageBytes = 4096;
constexpr std::uint32_t kHeaderKey = 0x6B39DAC7;
constexpr unsigned kPlaceBits = 0x1FFF;
constexpr unsigned kPointerBit = 0x4000;
constexpr unsigned kDeletedBit = 0x8000;

// RC4 with a key of four bytes, least significant first; the same call turns it back.
void Scramble(std::uint32_t key, char* bytes, std::size_t size) {
  std::array<unsigned char, 256> state;
  std::iota(state.begin(), state.end(), static_cast<unsigned char>(0));
  unsigned j = 0;
  for (unsigned i = 0; i < state.size(); ++i) {
    j = (j + state[i] + (key >> 8 * (i % 4) & 0xFF)) % 256;
    std::swap(state[i], state[j]);
  }
  unsigned i = j = 0;
  for (std::size_t at = 0; at < size; ++at) {
    i = (i + 1) % 256;
    j = (j + state[i]) % 256;
    std::swap(state[i], state[j]);
    bytes[at] = static_cast<char>(bytes[at] ^ state[(state[i] + state[j]) % 256]);
  }
}

}  // namespace

bool CAccessPages::Open(CInputFile* file, std::string* error) {
  file_ = file;
  if (!ReadHeader(error)) return false;
  const std::int64_t pages = file->Size() / static_cast<std::int64_t>(pageBytes_);
  constexpr std::int64_t kMostPages = 0xFFFFFF;  // of a pointer
  pages_ = static_cast<std::uint32_t>(std::min(pages, kMostPages));
  return true;
}

bool CAccessPages::ReadHeader(std::string* error) {
  constexpr std::size_t kScrambledAt = 0x18;
  constexpr std::size_t kNewestJet = 1;
  std::array<char, kScrambledAt + 128> header;
  constexpr auto kHeaderBytes = static_cast<std::int64_t>(header.size());
  if (!file_->Seek(0) || file_->Read(header.data(), kHeaderBytes) != kHeaderBytes) {
    *error = "the file ends within its header";
    return false;
  }
  const auto version = static_cast<unsigned char>(header[0x14]);
  jet4_ = version >= 1;
  pageBytes_ = jet4_ ? kJet4PageBytes : kJet3PageBytes;
  Scramble(kHeaderKey, header.data() + kScrambledAt, jet4_ ? 128 : 126);
  CByteReader in({header.data(), header.size()});
  in.Seek(0x3C);
  codePage_ = in.U16();
  key_ = in.U32();
  if (key_ == 0 || version <= kNewestJet) return true;
  *error =
      "the database is encrypted; please save it without a password in Access first, or export "
      "its table there as an Excel workbook or as text";
  return false;
}

bool CAccessPages::Read(std::uint32_t page, std::string* out) const {
  if (page == 0 || page >= pages_) return false;
  const auto bytes = static_cast<std::int64_t>(pageBytes_);
  out->resize(pageBytes_);
  if (!file_->Seek(page * bytes) || file_->Read(out->data(), bytes) != bytes) return false;
  if (key_ != 0) Scramble(key_ ^ page, out->data(), pageBytes_);
  return true;
}

std::size_t CAccessPages::CountRows(std::string_view page) const {
  CByteReader in(page);
  in.Seek(jet4_ ? 12 : 8);
  const std::size_t rows = in.U16();
  return std::min(rows, in.Left() / 2);
}

CAccessPages::ROW CAccessPages::RowOf(std::string_view page, std::size_t row) const {
  ROW out;
  if (row >= CountRows(page)) return out;
  CByteReader in(page);
  const std::size_t places = jet4_ ? 14 : 10;
  std::size_t end = page.size();
  if (row > 0) {
    in.Seek(places + 2 * (row - 1));
    end = in.U16() & kPlaceBits;
  }
  in.Seek(places + 2 * row);
  const unsigned place = in.U16();
  const std::size_t begin = place & kPlaceBits;
  out.deleted = (place & kDeletedBit) != 0;
  out.pointer = (place & kPointerBit) != 0;
  if (in.Ok() && begin < end && end <= page.size()) out.bytes = page.substr(begin, end - begin);
  return out;
}

void CAccessPages::AppendBits(std::string_view bits, std::uint64_t firstPage,
                              std::vector<std::uint32_t>* out) const {
  for (std::size_t i = 0; i < bits.size(); ++i) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      const std::uint64_t page = firstPage + i * 8 + bit;
      const bool owned = (static_cast<unsigned char>(bits[i]) >> bit & 1) != 0;
      if (owned && page < pages_) out->push_back(static_cast<std::uint32_t>(page));
    }
  }
}

std::vector<std::uint32_t> CAccessPages::PagesOfMap(std::uint32_t pointer) const {
  constexpr std::size_t kMapHeader = 4;
  std::vector<std::uint32_t> owned;
  std::string page;
  if (!Read(pointer >> 8, &page)) return owned;
  CByteReader map(RowOf(page, pointer & 0xFF).bytes);
  if (map.U8() == 0) {
    const std::uint32_t first = map.U32();
    AppendBits(map.Bytes(map.Left()), first, &owned);
    return owned;
  }
  const std::uint64_t pagesOfOne = (pageBytes_ - kMapHeader) * 8;
  std::string bits;
  for (std::uint64_t first = 0; map.Left() >= 4; first += pagesOfOne) {
    if (Read(map.U32(), &bits)) {
      AppendBits(std::string_view(bits).substr(kMapHeader), first, &owned);
    }
  }
  return owned;
}

}  // namespace statrn32
