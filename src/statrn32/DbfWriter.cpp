#include <algorithm>
#include <cmath>
#include <ctime>

#include "host/statrn32.h"
#include "statrn32/ByteWriter.h"
#include "statrn32/DbfFiles.h"
#include "statrn32/FileWriter.h"
#include "statrn32/FixedNumbers.h"
#include "statrn32/TextEncoder.h"

namespace statrn32 {
namespace {

constexpr std::size_t kNumberBytes = 20;
constexpr int kMostDecimals = 15;

class CDbfWriter final : public CFileWriter {
 public:
  CDbfWriter() : CFileWriter(6), encoder_("CP1252") {}

  std::vector<std::string> Notes() const override;

 protected:
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override { return Put("\x1A"); }

 private:
  static std::size_t WidthOf(const VARIABLE& variable);

  CTextEncoder encoder_;
  std::string record_;
  CFixedNumbers numbers_{kNumberBytes};
};

std::size_t CDbfWriter::WidthOf(const VARIABLE& variable) {
  if (variable.type != ST_TYPE_STRING) return kNumberBytes;
  return static_cast<std::size_t>(std::max(1, variable.width));
}

bool CDbfWriter::PutHeader() {
  constexpr std::uint8_t kDbase3 = 0x03;
  constexpr std::uint8_t kWindows1252 = 0x57;
  constexpr std::size_t kMostRecordBytes = 65535;
  std::size_t recordBytes = 1;
  for (const VARIABLE& variable : Variables()) recordBytes += WidthOf(variable);
  if (recordBytes > kMostRecordBytes) {
    return FailFile("a record would take " + std::to_string(recordBytes) +
                    " bytes; at most 65535 are possible");
  }
  const std::time_t now = std::time(nullptr);
  std::tm day{};
  gmtime_r(&now, &day);
  CByteWriter out;
  out.U8(kDbase3).U8(static_cast<unsigned>(day.tm_year)).U8(static_cast<unsigned>(day.tm_mon) + 1);
  out.U8(static_cast<unsigned>(day.tm_mday)).U32(static_cast<std::uint64_t>(Cases()));
  out.U16(32 * (Variables().size() + 1) + 1).U16(recordBytes).Zeros(17).U8(kWindows1252).Zeros(2);
  for (const VARIABLE& variable : Variables()) {
    const bool text = variable.type == ST_TYPE_STRING;
    out.Field(variable.name, 11, '\0').Bytes(text ? "C" : "N").Zeros(4).U8(WidthOf(variable));
    // Some programs take a number without decimals for a whole one.
    out.U8(text ? 0 : static_cast<unsigned>(std::clamp(variable.decimals, 1, kMostDecimals)));
    out.Zeros(14);
  }
  return Put(out.U8('\r').Data());
}

bool CDbfWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  record_.assign(1, ' ');
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const VARIABLE& variable = Variables()[i];
    const std::size_t end = record_.size() + WidthOf(variable);
    if (variable.type == ST_TYPE_STRING) {
      if (!cells[i].missing) record_ += encoder_.Encode(cells[i].text);
    } else if (!cells[i].missing && !std::isnan(cells[i].number)) {
      numbers_.Append(cells[i].number, &record_);
    }
    record_.resize(end, ' ');
  }
  return Put(record_);
}

std::vector<std::string> CDbfWriter::Notes() const {
  std::vector<std::string> notes;
  numbers_.Note(&notes);
  encoder_.Note(&notes);
  return notes;
}

}  // namespace

std::unique_ptr<CWriter> WriteDbf() {
  return std::make_unique<CDbfWriter>();
}

}  // namespace statrn32
