#include <algorithm>
#include <bit>
#include <cmath>
#include <ctime>

#include "host/statrn32.h"
#include "statrn32/ByteWriter.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/ParadoxFiles.h"
#include "statrn32/ParadoxHeader.h"
#include "statrn32/TextEncoder.h"

namespace statrn32 {
namespace {

constexpr std::size_t kUnit = 1024;  // bytes, of the size of a block
constexpr std::size_t kNumberBytes = 8;
constexpr std::size_t kMostBlocks = 65535;

// Tables of version 7 without a key. Numbers are doubles, texts stand in Windows-1252.
class CParadoxWriter final : public CFileWriter {
 public:
  CParadoxWriter() : CFileWriter(10), encoder_("CP1252") {}

  std::vector<std::string> Notes() const override;

 protected:
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override { return rows_ == 0 || PutBlock(); }

 private:
  static std::size_t WidthOf(const VARIABLE& variable);
  bool ChooseBlocks();
  bool PutBlock();
  std::string HeaderFields();

  CTextEncoder encoder_;
  std::size_t rowBytes_ = 0;
  std::size_t blockUnits_ = 0;
  std::size_t rowsOfBlock_ = 0;
  std::size_t blocks_ = 0;
  std::size_t number_ = 0;  // of the block being filled, from 0
  std::size_t rows_ = 0;    // in it
  CByteWriter block_;
};

std::size_t CParadoxWriter::WidthOf(const VARIABLE& variable) {
  if (variable.type != ST_TYPE_STRING) return kNumberBytes;
  return static_cast<std::size_t>(std::max(1, variable.width));
}

// The smallest blocks with which the table has not too many of them.
bool CParadoxWriter::ChooseBlocks() {
  for (const VARIABLE& variable : Variables()) rowBytes_ += WidthOf(variable);
  const auto rows = static_cast<std::size_t>(Cases());
  for (const std::size_t units : {2, 4, 8, 16, 24, 32}) {
    blockUnits_ = units;
    rowsOfBlock_ = (units * kUnit - kParadoxBlockHead) / rowBytes_;
    if (rowsOfBlock_ == 0) continue;
    blocks_ = (rows + rowsOfBlock_ - 1) / rowsOfBlock_;
    if (blocks_ <= kMostBlocks) return true;
  }
  if (rowsOfBlock_ == 0) {
    return FailFile("a record would take " + std::to_string(rowBytes_) +
                    " bytes; at most 32762 are possible");
  }
  return FailFile("the table would take more than 65535 blocks of 32 KiB");
}

// What stands from 0x78 on.
std::string CParadoxWriter::HeaderFields() {
  constexpr std::size_t kTableName = 261;
  const std::size_t count = Variables().size();
  CByteWriter out;
  for (const VARIABLE& variable : Variables()) {
    const bool text = variable.type == ST_TYPE_STRING;
    out.U8(static_cast<unsigned>(text ? PARADOX_TYPE::Text : PARADOX_TYPE::Double));
    out.U8(WidthOf(variable));
  }
  const std::string& name = FinalName().empty() ? Name() : FinalName();
  const std::size_t slash = name.rfind('/');
  out.Zeros(4 + 4 * count);
  out.Field(name.substr(slash == std::string::npos ? 0 : slash + 1), kTableName - 1, '\0');
  out.Zeros(1);
  for (const VARIABLE& variable : Variables()) {
    out.Bytes(encoder_.Encode(variable.name)).Zeros(1);
  }
  return out.Data();
}

bool CParadoxWriter::PutHeader() {
  constexpr std::size_t kHeaderUnit = 2048;
  constexpr unsigned kNoKey = 2;
  constexpr unsigned kVersion = 12;
  constexpr unsigned kWindows1252 = 1252;
  constexpr std::size_t kPlaces = 0x58;  // places in the header count from here
  constexpr std::size_t kFieldsAt = 0x78;
  constexpr std::string_view kSortOrder("ascii\0", 6);
  if (!ChooseBlocks()) return false;
  const std::size_t count = Variables().size();
  const std::string fields = HeaderFields();
  const std::size_t numbersAt = kFieldsAt + fields.size();
  const std::size_t used = numbersAt + 2 * count + kSortOrder.size();
  const std::size_t headerBytes = (used + kHeaderUnit - 1) / kHeaderUnit * kHeaderUnit;
  CByteWriter out;
  out.U16(rowBytes_).U16(headerBytes).U8(kNoKey).U8(blockUnits_);
  out.U32(static_cast<std::uint64_t>(Cases())).U16(blocks_).U16(blocks_);
  out.U16(blocks_ > 0 ? 1 : 0).U16(blocks_).Zeros(0x21 - 0x12).U16(count).Zeros(2);
  out.U32(kParadoxPlain).Zeros(0x39 - 0x29).U8(kVersion).U16(blocks_).Zeros(2).U16(0x0F1F);
  out.Zeros(0x51 - 0x40).U32(used).Zeros(1).U8(0x20).Zeros(1);
  out.U16(0x100 + kVersion).U16(0x100 + kVersion).Zeros(4);
  out.U32(static_cast<std::uint64_t>(std::time(nullptr))).U16(count + 1).U16(numbersAt - kPlaces);
  out.Zeros(2).U16(kWindows1252).U8(1).U8(1).U16(numbersAt + 2 * count - kPlaces).U16(2).Zeros(6);
  out.Bytes(fields);
  for (std::size_t i = 1; i <= count; ++i) out.U16(i);
  out.Bytes(kSortOrder).Zeros(headerBytes - used);
  return Put(out.Data());
}

bool CParadoxWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  block_.SetBigEndian(true);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const OUT_CELL& cell = cells[i];
    if (Variables()[i].type == ST_TYPE_STRING) {
      block_.Field(cell.missing ? std::string() : encoder_.Encode(cell.text),
                   WidthOf(Variables()[i]), '\0');
    } else if (cell.missing || std::isnan(cell.number)) {
      block_.Zeros(kNumberBytes);
    } else {
      const auto bits = std::bit_cast<std::uint64_t>(cell.number);
      block_.Unsigned((bits & kSign) != 0 ? ~bits : bits ^ kSign, kNumberBytes);
    }
  }
  return ++rows_ < rowsOfBlock_ || PutBlock();
}

bool CParadoxWriter::PutBlock() {
  CByteWriter head;
  head.U16(number_ + 1 < blocks_ ? number_ + 2 : 0).U16(number_).U16((rows_ - 1) * rowBytes_);
  const std::size_t used = head.Size() + block_.Size();
  const bool done =
      Put(head.Data()) && Put(block_.Data()) && Put(std::string(blockUnits_ * kUnit - used, '\0'));
  block_.Clear();
  rows_ = 0;
  ++number_;
  return done;
}

std::vector<std::string> CParadoxWriter::Notes() const {
  std::vector<std::string> notes;
  encoder_.Note(&notes);
  return notes;
}

}  // namespace

constexpr NAME_RULES kParadoxNames = {25, "_", "_ ", true, false, false, {}};
constexpr LIMITS kParadoxLimits = {
    .records = 2'000'000'000,
    .variables = 255,
    .textBytes = 255,
    .remark =
        "Letters outside Windows-1252 are lost; an empty text and a missing one are the same; a "
        "table has at most 2 GiB."};

std::unique_ptr<CWriter> WriteParadox() {
  return std::make_unique<CParadoxWriter>();
}

}  // namespace statrn32
