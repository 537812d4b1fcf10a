#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/EpiFiles.h"
#include "statrn32/FileWriter.h"
#include "statrn32/FixedNumbers.h"
#include "statrn32/Formats.h"
#include "statrn32/TextEncoder.h"

namespace statrn32 {
namespace {

constexpr std::size_t kNumberBytes = 14;
constexpr std::size_t kTextBytes = 80;
constexpr std::size_t kLabelBytes = 80;

class CEpiWriter final : public CFileWriter {
 public:
  CEpiWriter() : CFileWriter(32), encoder_("CP850") {}

  std::vector<std::string> Notes() const override;

 protected:
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;

 private:
  static std::size_t WidthOf(const VARIABLE& variable);

  CTextEncoder encoder_;
  std::string record_;
  CFixedNumbers numbers_{kNumberBytes};
};

std::size_t CEpiWriter::WidthOf(const VARIABLE& variable) {
  if (variable.type != ST_TYPE_STRING) return kNumberBytes;
  return static_cast<std::size_t>(std::max(1, variable.width));
}

bool CEpiWriter::PutHeader() {
  std::string lines = std::to_string(Variables().size()) + " 1\r\n";
  int row = 1;
  for (const VARIABLE& variable : Variables()) {
    const bool text = variable.type == ST_TYPE_STRING;
    const int type = text ? kEpiText : kEpiNumber + std::clamp(variable.decimals, 1, 9);
    std::array<char, 80> line;
    const int bytes = std::snprintf(line.data(), line.size(), "%c%-10s%4d%4d%4d%4d%4d%5d%4d%4d ",
                                    text ? '_' : '#', variable.name.c_str(), 1, row % 1000, 30, 20,
                                    row % 1000, type, static_cast<int>(WidthOf(variable)), 112);
    lines.append(line.data(), static_cast<std::size_t>(bytes));
    lines += encoder_.Encode(variable.label.empty() ? variable.name : variable.label) + "\r\n";
    ++row;
  }
  return Put(lines);
}

bool CEpiWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  record_.clear();
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
  std::replace_if(
      record_.begin(), record_.end(), [](char c) { return c == '\n' || c == '\r' || c == '\x1A'; },
      ' ');
  for (std::size_t at = 0; at < record_.size(); at += kEpiLineBytes) {
    if (!Put(record_.substr(at, kEpiLineBytes) + "!\r\n")) return false;
  }
  return true;
}

std::vector<std::string> CEpiWriter::Notes() const {
  std::vector<std::string> notes;
  numbers_.Note(&notes);
  encoder_.Note(&notes);
  return notes;
}

}  // namespace

constexpr NAME_RULES kEpiNames = {10, "", "", true, true, false, {}};
constexpr LIMITS kEpiLimits = {
    .variables = 10000,
    .textBytes = kTextBytes,
    .labelBytes = kLabelBytes,
    .remark = "Numbers have at most 14 characters, about 7 to 13 digits.",
    .textRemark =
        "Letters outside code page 850 and line ends are lost; an empty text and a "
        "missing one are the same."};

std::unique_ptr<CWriter> WriteEpi() {
  return std::make_unique<CEpiWriter>();
}

}  // namespace statrn32
