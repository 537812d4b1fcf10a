// Little-endian: "CSS "; at 8 i32 records, i32 variables m; from 0x18 u16 sizes of the parts of the
// header: 20, 80, 8m names, 2m formats, 8m missing codes, 2m counts of labels, 4m places of labels,
// formulas (0x26); at 0x2A u32 bytes of labels. The parts begin at 138: names of 8, filled from the
// left; u8 width and u8 decimals; f64 the number that means missing; u16 labels; u32 place among
// the labels; formulas; labels of 14 bytes (f32 value, text of 8, i16 place of a longer text or
// -1). The records are the last bytes of the file, f64 by f64. Texts are numbers with a label.
#include <algorithm>
#include <cmath>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/ByteReader.h"
#include "statrn32/FileReader.h"
#include "statrn32/StatisticaFiles.h"

namespace statrn32 {
namespace {

constexpr std::size_t kMostVariables = 32767;
constexpr std::size_t kNameBytes = 8;
constexpr std::size_t kLabelBytes = 14;

class CStatisticaReader final : public CFileReader {
 public:
  CStatisticaReader() : CFileReader(30) {}

  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }

 private:
  bool FailHeader() { return FailFile("its header is damaged or cut off"); }
  bool ReadParts(CByteReader* in, DICTIONARY* out);
  void ReadLabels(CByteReader* in, DICTIONARY* out);

  CTextDecoder decoder_;
  std::size_t variables_ = 0;
  std::size_t formulaBytes_ = 0;
  std::vector<double> missing_;      // the code of each variable
  std::vector<std::size_t> labels_;  // how many each has
  std::vector<std::size_t> places_;  // where they begin
  std::int64_t rows_ = 0;
  std::int64_t next_ = 0;
  std::string row_;
};

bool CStatisticaReader::ReadHeader(DICTIONARY* out) {
  constexpr std::int64_t kStart = 138;
  std::string start(kStart, '\0');
  if (!ReadExactly(start.data(), kStart, "its header")) return false;
  CByteReader in(start);
  in.Seek(8);
  rows_ = in.I32();
  const std::int32_t variables = in.I32();
  if (rows_ < 0 || variables < 1 || static_cast<std::size_t>(variables) > kMostVariables) {
    return FailHeader();
  }
  variables_ = static_cast<std::size_t>(variables);
  in.Seek(0x1C);
  for (const std::size_t unit : {8, 2, 8, 2, 4}) {
    if (in.U16() != (unit * variables_ & 0xFFFF)) return FailHeader();
  }
  formulaBytes_ = in.U16();
  const auto dataBytes = rows_ * static_cast<std::int64_t>(8 * variables_);
  if (dataBytes > Input().Size() - kStart) {
    return FailFile("the file is too short for " + std::to_string(rows_) + " records of " +
                    std::to_string(variables_) + " variables");
  }
  decoder_.SetEncoding(Options().encoding, "CP1252");
  constexpr std::int64_t kMostHeader = std::int64_t{64} << 20;
  std::string parts(
      static_cast<std::size_t>(std::min(Input().Size() - dataBytes - kStart, kMostHeader)), '\0');
  if (!ReadExactly(parts.data(), static_cast<std::int64_t>(parts.size()), "its header")) {
    return false;
  }
  CByteReader rest(parts);
  if (!ReadParts(&rest, out)) return FailHeader();
  Input().Seek(Input().Size() - dataBytes);
  row_.resize(8 * variables_);
  out->cases = rows_;
  return true;
}

bool CStatisticaReader::ReadParts(CByteReader* in, DICTIONARY* out) {
  for (std::size_t i = 0; i < variables_; ++i) {
    VARIABLE variable;
    variable.name = Trimmed(decoder_.Decode(in->Bytes(kNameBytes)));
    variable.type = ST_TYPE_NUMERIC;
    out->variables.push_back(std::move(variable));
  }
  for (VARIABLE& variable : out->variables) {
    variable.width = in->U8();
    variable.decimals = in->U8();
  }
  for (std::size_t i = 0; i < variables_; ++i) missing_.push_back(in->F64());
  for (std::size_t i = 0; i < variables_; ++i) labels_.push_back(in->U16());
  for (std::size_t i = 0; i < variables_; ++i) places_.push_back(in->U32());
  in->Skip(formulaBytes_);
  if (!in->Ok()) return false;
  ReadLabels(in, out);
  return true;
}

// Variables may share their labels, but not so that a small file gives very many.
void CStatisticaReader::ReadLabels(CByteReader* in, DICTIONARY* out) {
  constexpr std::size_t kMostShared = 8;
  const std::string_view all = in->Bytes(in->Left());
  std::size_t left = all.size() / kLabelBytes * kMostShared;
  for (std::size_t i = 0; i < variables_; ++i) {
    LABEL_SET set;
    CByteReader labels(all);
    labels.Seek(places_[i]);
    for (std::size_t k = 0; k < labels_[i] && labels.Left() >= kLabelBytes && left > 0; ++k) {
      --left;
      VALUE_LABEL label;
      label.number = static_cast<double>(labels.F32());
      label.label = decoder_.Decode(labels.Bytes(kNameBytes));
      labels.Skip(2);
      if (std::isfinite(label.number)) set.push_back(std::move(label));
    }
    if (set.empty()) continue;
    out->variables[i].labelSet = static_cast<int>(out->labelSets.size());
    out->labelSets.push_back(std::move(set));
  }
}

void CStatisticaReader::FillBlock(CBlockFiller* out) {
  for (; next_ < rows_ && !out->Full(); ++next_) {
    if (!ReadExactly(row_.data(), static_cast<std::int64_t>(row_.size()), "the records")) return;
    CByteReader in(row_);
    for (const double missing : missing_) {
      const double number = in.F64();
      const bool there = std::isfinite(number) && number != missing;
      there ? out->Number(number) : out->MissingNumber(ST_STATUS_MISSING);
    }
    out->EndRecord();
  }
}

}  // namespace

bool IsStatistica(std::string_view first) {
  return first.size() >= 16 && first.substr(0, 4) == "CSS ";
}

std::unique_ptr<CReader> ReadStatistica() {
  return std::make_unique<CStatisticaReader>();
}

}  // namespace statrn32
