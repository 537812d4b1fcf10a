#include "statrn32/DbfMemo.h"

#include <algorithm>

#include "statrn32/BesideFile.h"
#include "statrn32/HeaderBytes.h"

namespace statrn32 {

bool CDbfMemo::OpenBeside(const std::string& dbf) {
  std::string name = FindBeside(dbf, "fpt");
  foxPro_ = !name.empty();
  if (!foxPro_) name = FindBeside(dbf, "dbt");
  if (name.empty() || !file_.Open(name)) return false;
  CHeaderBytes in(&file_);
  in.SetBigEndian(foxPro_);
  in.Skip(foxPro_ ? 6 : 20);
  blockBytes_ = static_cast<std::int64_t>(in.Unsigned(2));
  if (blockBytes_ == 0) blockBytes_ = foxPro_ ? 1 : 512;
  open_ = in.Ok();
  return open_;
}

std::string_view CDbfMemo::Read(std::uint64_t block) {
  const auto begin = static_cast<std::int64_t>(block) * blockBytes_;
  const bool there = open_ && block > 0 && block <= 0xFFFFFFFF && begin < file_.Size();
  if (!there || !file_.Seek(begin)) return {};
  CHeaderBytes in(&file_);
  in.SetBigEndian(foxPro_);
  const std::uint64_t mark = in.Unsigned(4);
  const auto length = static_cast<std::int64_t>(in.Unsigned(4));
  constexpr std::uint64_t kDbase4Mark = 0x0008FFFF;
  if (foxPro_) return in.Ok() ? ReadBytes(length) : std::string_view();
  if (mark == kDbase4Mark) return in.Ok() ? ReadBytes(length - 8) : std::string_view();
  file_.Seek(begin);
  return ReadUntilMark();
}

std::string_view CDbfMemo::ReadBytes(std::int64_t size) {
  if (size <= 0 || size > file_.Size() - file_.Position()) return {};
  text_.resize(static_cast<std::size_t>(size));
  return file_.Read(text_.data(), size) == size ? std::string_view(text_) : std::string_view();
}

std::string_view CDbfMemo::ReadUntilMark() {
  constexpr std::int64_t kPart = 512;
  constexpr char kMark = 0x1A;
  text_.clear();
  for (;;) {
    const std::size_t old = text_.size();
    text_.resize(old + kPart);
    const std::int64_t got = std::max<std::int64_t>(0, file_.Read(text_.data() + old, kPart));
    text_.resize(old + static_cast<std::size_t>(got));
    const std::size_t end = text_.find(kMark, old);
    if (end != std::string::npos) return std::string_view(text_).substr(0, end);
    if (got < kPart) return text_;
  }
}

}  // namespace statrn32
