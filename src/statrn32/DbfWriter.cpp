#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <ctime>

#include "host/statrn32.h"
#include "statrn32/ByteWriter.h"
#include "statrn32/DbfFiles.h"
#include "statrn32/FileWriter.h"
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
  void AppendNumber(double number);

  CTextEncoder encoder_;
  std::string record_;
  std::int64_t rounded_ = 0;
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
      AppendNumber(cells[i].number);
    }
    record_.resize(end, ' ');
  }
  return Put(record_);
}

// The shortest text that reads back equal where it fits, else as many digits as fit. Numbers stand
// at the right end of their field.
void CDbfWriter::AppendNumber(double number) {
  std::array<char, 40> text;
  char* const last = text.data() + text.size();
  char* end = std::to_chars(text.data(), last, number).ptr;
  const auto fits = [&] { return end - text.data() <= static_cast<std::ptrdiff_t>(kNumberBytes); };
  if (!fits()) ++rounded_;
  for (int digits = 17; !fits(); --digits) {
    end = std::to_chars(text.data(), last, number, std::chars_format::general, digits).ptr;
  }
  const auto bytes = static_cast<std::size_t>(end - text.data());
  record_.append(kNumberBytes - bytes, ' ').append(text.data(), bytes);
}

std::vector<std::string> CDbfWriter::Notes() const {
  std::vector<std::string> notes;
  if (rounded_ > 0) {
    notes.push_back("Numbers that were rounded to 20 characters: " + std::to_string(rounded_) +
                    ".");
  }
  if (encoder_.Lost() > 0) {
    notes.push_back("Letters that became a question mark: " + std::to_string(encoder_.Lost()) +
                    ".");
  }
  return notes;
}

}  // namespace

std::unique_ptr<CWriter> WriteDbf() {
  return std::make_unique<CDbfWriter>();
}

}  // namespace statrn32
