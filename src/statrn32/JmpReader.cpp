#include <algorithm>
#include <cmath>

#include "host/statrn32.h"
#include "statrn32/ByteReader.h"
#include "statrn32/FileReader.h"
#include "statrn32/JmpColumns.h"
#include "statrn32/JmpFiles.h"

namespace statrn32 {
namespace {

constexpr std::int64_t kMostBytes = std::int64_t{1} << 32;

// The first byte of a column's kind.
constexpr unsigned kDouble = 0x01;
constexpr unsigned kText = 0x02;
constexpr unsigned kPackedText = 0x09;
constexpr unsigned kPackedNumber = 0x0A;
constexpr unsigned kInt8 = 0xFF;
constexpr unsigned kInt16 = 0xFE;
constexpr unsigned kInt32 = 0xFC;

// What a display format shows.
DATE_KIND DateKindOfFormat(unsigned format) {
  constexpr std::string_view kDates("\x65\x66\x67\x6E\x6F\x70\x71\x72\x75\x76\x7A\x7F\x88\x8B");
  constexpr std::string_view kMoments(
      "\x69\x6A\x73\x74\x77\x78\x79\x7B\x7C\x7D\x7E\x80\x81\x82\x86\x87\x89\x8A");
  constexpr std::string_view kDurations("\x0C\x6B\x6C\x6D\x83\x84\x85");
  const auto in = [format](std::string_view list) {
    return list.find(static_cast<char>(format)) != std::string_view::npos;
  };
  return in(kDates)       ? DATE_KIND::SecondDate
         : in(kMoments)   ? DATE_KIND::Seconds
         : in(kDurations) ? DATE_KIND::Duration
                          : DATE_KIND::None;
}

class CJmpReader final : public CFileReader {
 public:
  CJmpReader() : CFileReader(35) {
    SetDates(
        {kSerial1904EpochDay, DATE_KIND::SecondDate, DATE_KIND::Seconds, DATE_KIND::TimeOfDay});
  }

  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }
  std::vector<std::string> Notes() const override;
  double Progress() const override {
    return table_.rows > 0 ? static_cast<double>(row_) / static_cast<double>(table_.rows) : 1;
  }

 private:
  struct COLUMN {
    bool text = false;
    std::size_t width = 0;     // bytes of a value; of a text of its own length, of that length
    bool ownLengths = false;   // texts follow each other, their lengths stand before
    std::string_view values;   // of the rows
    std::string_view lengths;  // of texts of their own length
    std::size_t next = 0;      // text
    std::string unpacked;
  };

  bool PrepareColumn(const JMP_COLUMN& source, COLUMN* column);
  bool PrepareNumbers(const JMP_COLUMN& source, std::string_view bytes, COLUMN* column);
  bool PrepareTexts(const JMP_COLUMN& source, std::string_view bytes, COLUMN* column);
  bool TakeLast(std::string_view bytes, COLUMN* column) const;
  VARIABLE VariableOf(const JMP_COLUMN& source, const COLUMN& column);
  void FillNumber(const COLUMN& column, CBlockFiller* out) const;
  void FillText(COLUMN* column, CBlockFiller* out);

  std::string bytes_;
  JMP_TABLE table_;
  CTextDecoder decoder_;
  std::vector<std::unique_ptr<COLUMN>> columns_;
  std::uint64_t unpackedLeft_ = 0;  // bytes that the rest of the columns may take
  std::string leftOut_;
  std::int64_t row_ = 0;
};

bool CJmpReader::ReadHeader(DICTIONARY* out) {
  std::string error;
  if (!ReadWhole(&bytes_, kMostBytes)) return false;
  unpackedLeft_ = bytes_.size() * kMostUnpacked;
  if (!ReadJmpTable(bytes_, &table_, &error)) return FailFile(error);
  const std::string encoding = Options().encoding.empty() ? table_.encoding : Options().encoding;
  decoder_.SetEncoding(encoding.c_str());
  for (const JMP_COLUMN& source : table_.columns) {
    auto column = std::make_unique<COLUMN>();
    if (!PrepareColumn(source, column.get())) {
      leftOut_ += (leftOut_.empty() ? "" : ", ") + decoder_.Decode(source.name);
      continue;
    }
    out->variables.push_back(VariableOf(source, *column));
    columns_.push_back(std::move(column));
  }
  if (columns_.empty()) return FailFile("none of its columns can be read");
  out->cases = table_.rows;
  return true;
}

bool CJmpReader::PrepareColumn(const JMP_COLUMN& source, COLUMN* column) {
  if (source.packed && !UnpackJmp(source.values, &unpackedLeft_, &column->unpacked)) return false;
  const std::string_view bytes = source.packed ? column->unpacked : source.values;
  const unsigned kind = source.kind[0];
  column->text = kind == kText || kind == kPackedText;
  return column->text ? PrepareTexts(source, bytes, column) : PrepareNumbers(source, bytes, column);
}

// The values are the last bytes of the column.
bool CJmpReader::TakeLast(std::string_view bytes, COLUMN* column) const {
  const auto rows = static_cast<std::size_t>(table_.rows);
  if (column->width == 0 || rows > bytes.size() / column->width) return false;
  column->values = bytes.substr(bytes.size() - rows * column->width);
  return true;
}

bool CJmpReader::PrepareNumbers(const JMP_COLUMN& source, std::string_view bytes, COLUMN* column) {
  switch (source.kind[0]) {
    case kDouble:
    case kPackedNumber:
      column->width = source.kind[5];
      break;
    case kInt8:
    case kInt16:
    case kInt32:
      column->width = source.kind[4];
      break;
    default:
      return false;
  }
  const std::size_t width = column->width;
  return (width == 1 || width == 2 || width == 4 || width == 8) && TakeLast(bytes, column);
}

// Texts of one width, or u64 size of what follows, u8 width of a length, u32 the longest, the
// lengths, the texts.
bool CJmpReader::PrepareTexts(const JMP_COLUMN& source, std::string_view bytes, COLUMN* column) {
  column->width = source.kind[4];
  if (column->width > 0) return source.kind[3] == 0 && TakeLast(bytes, column);
  CByteReader in(bytes);
  const std::uint64_t size = in.Unsigned(8);
  if (size != in.Left()) return false;  // kept in a form that is not known
  column->ownLengths = true;
  column->width = in.U8();
  in.Skip(4);
  const auto rows = static_cast<std::size_t>(table_.rows);
  if (column->width != 1 && column->width != 2 && column->width != 4) return false;
  if (rows > in.Left() / column->width) return false;
  column->lengths = in.Bytes(rows * column->width);
  column->values = in.Bytes(in.Left());
  return true;
}

VARIABLE CJmpReader::VariableOf(const JMP_COLUMN& source, const COLUMN& column) {
  constexpr int kTextWidth = 255;
  constexpr unsigned kFixedDecimals = 0x5E;
  constexpr int kMostDecimals = 15;
  VARIABLE variable;
  variable.name = decoder_.Decode(source.name);
  if (column.text) {
    variable.type = ST_TYPE_STRING;
    variable.width = column.ownLengths ? kTextWidth : static_cast<int>(column.width);
    return variable;
  }
  variable.width = source.kind[2];
  const bool fixed = source.kind[4] == kFixedDecimals;
  if (column.width == 8 && !fixed) variable.date = DateKindOfFormat(source.kind[3]);
  if (column.width == 8 && variable.date == DATE_KIND::None) {
    variable.decimals = fixed ? std::min<int>(source.kind[3], kMostDecimals) : 3;
  }
  variable.type = variable.date != DATE_KIND::None ? ST_TYPE_DATE : ST_TYPE_NUMERIC;
  return variable;
}

void CJmpReader::FillBlock(CBlockFiller* out) {
  for (; row_ < table_.rows && !out->Full(); ++row_) {
    for (const auto& column : columns_) {
      column->text ? FillText(column.get(), out) : FillNumber(*column, out);
    }
    out->EndRecord();
  }
}

// The smallest number but one of each whole kind means missing.
void CJmpReader::FillNumber(const COLUMN& column, CBlockFiller* out) const {
  CByteReader in(column.values.substr(static_cast<std::size_t>(row_) * column.width));
  if (column.width == 8) {
    const double number = in.F64();
    return std::isfinite(number) ? out->Number(number) : out->MissingNumber(ST_STATUS_MISSING);
  }
  const unsigned spare = 64 - 8 * static_cast<unsigned>(column.width);
  const auto number = static_cast<std::int64_t>(in.Unsigned(column.width) << spare) >> spare;
  const std::int64_t missing = -(std::int64_t{1} << (8 * column.width - 1)) + 1;
  number == missing ? out->MissingNumber(ST_STATUS_MISSING)
                    : out->Number(static_cast<double>(number));
}

void CJmpReader::FillText(COLUMN* column, CBlockFiller* out) {
  const std::size_t at = static_cast<std::size_t>(row_) * column->width;
  if (!column->ownLengths) {
    return out->Text(&decoder_, column->values.substr(at, column->width));
  }
  const std::size_t length = CByteReader(column->lengths.substr(at)).Unsigned(column->width);
  const std::size_t begin = std::min(column->next, column->values.size());
  const std::string_view text = column->values.substr(begin, length);
  column->next = begin + text.size();
  out->Text(&decoder_, text);
}

std::vector<std::string> CJmpReader::Notes() const {
  if (leftOut_.empty()) return {};
  return {"Columns whose values are damaged or of a kind that is not read were left out: " +
          leftOut_ + "."};
}

}  // namespace

bool IsJmp(std::string_view first) {
  constexpr std::string_view kMark("\xFF\xFF\0\0\x07\0\0\0\x04\0\0\0\x01\0", 14);
  return first.substr(0, kMark.size()) == kMark;
}

std::unique_ptr<CReader> ReadJmp() {
  return std::make_unique<CJmpReader>();
}

}  // namespace statrn32
