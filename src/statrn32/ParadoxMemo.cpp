#include "statrn32/ParadoxMemo.h"

#include "statrn32/BesideFile.h"
#include "statrn32/ByteReader.h"
#include "statrn32/HeaderBytes.h"

namespace statrn32 {
namespace {

constexpr std::size_t kPointerBytes = 10;

}  // namespace

bool CParadoxMemo::OpenBeside(const std::string& table) {
  const std::string name = FindBeside(table, "mb");
  open_ = !name.empty() && file_.Open(name);
  return open_;
}

bool CParadoxMemo::Read(std::string_view field, std::string_view* text) {
  *text = {};
  if (field.size() < kPointerBytes) return false;
  const std::size_t leader = field.size() - kPointerBytes;
  CByteReader in(field.substr(leader));
  const std::uint32_t place = in.U32();
  const auto length = static_cast<std::int64_t>(in.U32());
  if (length <= static_cast<std::int64_t>(leader)) {
    *text = field.substr(0, static_cast<std::size_t>(length));
    return true;
  }
  std::int64_t begin = 0;
  if (!open_ || length > file_.Size() ||
      !FindPlace(place & ~std::uint32_t{0xFF}, place & 0xFF, length, &begin)) {
    return false;
  }
  text_.resize(static_cast<std::size_t>(length));
  if (!file_.Seek(begin) || file_.Read(text_.data(), length) != length) return false;
  *text = text_;
  return true;
}

bool CParadoxMemo::FindPlace(std::int64_t block, unsigned entry, std::int64_t length,
                             std::int64_t* place) {
  constexpr unsigned kAlone = 0xFF;
  constexpr std::uint64_t kOne = 2;
  constexpr std::uint64_t kSeveral = 3;
  constexpr std::int64_t kUnit = 16;
  CHeaderBytes in(&file_);
  file_.Seek(block);
  const std::uint64_t kind = in.Unsigned(1);
  if (entry == kAlone) {
    *place = block + 9;
    return in.Ok() && kind == kOne;
  }
  file_.Seek(block + 12 + 5 * static_cast<std::int64_t>(entry));
  const auto unit = static_cast<std::int64_t>(in.Unsigned(1));
  const auto units = static_cast<std::int64_t>(in.Unsigned(1));
  *place = block + unit * kUnit;
  return in.Ok() && kind == kSeveral && length <= units * kUnit;
}

}  // namespace statrn32
