#include <algorithm>
#include <bit>
#include <cmath>

#include "host/statrn32.h"
#include "statrn32/ByteReader.h"
#include "statrn32/FileReader.h"
#include "statrn32/Formats.h"
#include "statrn32/ParadoxFiles.h"
#include "statrn32/ParadoxHeader.h"
#include "statrn32/ParadoxMemo.h"

namespace statrn32 {
namespace {

constexpr double kMillisOfSecond = 1000;

bool IsText(PARADOX_TYPE type) {
  return type == PARADOX_TYPE::Text || type == PARADOX_TYPE::Memo;
}

bool IsRead(PARADOX_TYPE type) {
  switch (type) {
    case PARADOX_TYPE::Blob:
    case PARADOX_TYPE::FormattedMemo:
    case PARADOX_TYPE::Object:
    case PARADOX_TYPE::Graphic:
    case PARADOX_TYPE::Bytes:
      return false;
    default:
      return true;
  }
}

bool AllZeros(std::string_view bytes) {
  return bytes.find_first_not_of('\0') == std::string_view::npos;
}

// The sign bit was turned; of doubles below zero all bits were.
double Int(std::string_view bytes) {
  CByteReader in(bytes);
  in.SetBigEndian(true);
  const std::size_t bits = 8 * bytes.size();
  const std::uint64_t number = in.Unsigned(bytes.size()) ^ std::uint64_t{1} << (bits - 1);
  return bytes.size() == 2 ? static_cast<double>(static_cast<std::int16_t>(number))
                           : static_cast<double>(static_cast<std::int32_t>(number));
}

double Double(std::string_view bytes) {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  CByteReader in(bytes);
  in.SetBigEndian(true);
  const std::uint64_t bits = in.Unsigned(8);
  return std::bit_cast<double>((bits & kSign) != 0 ? bits ^ kSign : ~bits);
}

// 32 digits, two a byte, behind a byte with the sign and, in its low 6 bits, the number of
// decimals; of numbers below zero the bits of the digits were turned.
double Decimal(std::string_view bytes) {
  const bool negative = (static_cast<unsigned char>(bytes[0]) & 0x80) == 0;
  const unsigned turn = negative ? 0xFF : 0;
  const int decimals = static_cast<unsigned char>(bytes[0]) & 0x3F;
  long double number = 0;
  for (const char c : bytes.substr(1)) {
    const unsigned pair = static_cast<unsigned char>(c) ^ turn;
    number = number * 100 + (pair >> 4) * 10 + (pair & 0x0F);
  }
  number /= std::pow(10.0L, decimals);
  return static_cast<double>(negative ? -number : number);
}

// Bytes that a field of this type must have; 0 where that differs.
std::size_t BytesOf(PARADOX_TYPE type) {
  switch (type) {
    case PARADOX_TYPE::Int16:
      return 2;
    case PARADOX_TYPE::Date:
    case PARADOX_TYPE::Int32:
    case PARADOX_TYPE::Time:
    case PARADOX_TYPE::Counter:
      return 4;
    case PARADOX_TYPE::Money:
    case PARADOX_TYPE::Double:
    case PARADOX_TYPE::Moment:
      return 8;
    case PARADOX_TYPE::Logical:
      return 1;
    default:
      return 0;
  }
}

class CParadoxReader final : public CFileReader {
 public:
  CParadoxReader() : CFileReader(10) {
    SetDates({kParadoxEpochDay, DATE_KIND::DayDate, DATE_KIND::Millis, DATE_KIND::TimeOfDay});
  }

  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }
  std::vector<std::string> Notes() const override;

 private:
  VARIABLE VariableOf(const PARADOX_FIELD& field);
  bool NextBlockOfRows();
  void FillField(std::string_view row, const PARADOX_FIELD& field, CBlockFiller* out);

  PARADOX_HEADER header_;
  CTextDecoder decoder_;
  CParadoxMemo memo_;
  std::vector<PARADOX_FIELD> fields_;  // that are read
  std::string leftOut_;                // names of those that are not
  bool wantsMemo_ = false;
  bool hasMemo_ = false;
  std::int64_t nextBlock_ = 0;
  std::int64_t blocksRead_ = 0;
  std::string block_;
  std::size_t rowAt_ = 0;    // in the block
  std::size_t rowsEnd_ = 0;  // of the block's rows
  std::int64_t rowsRead_ = 0;
};

bool CParadoxReader::ReadHeader(DICTIONARY* out) {
  std::string error;
  if (!ReadParadoxHeader(&Input(), &header_, &error)) return FailFile(error);
  std::string encoding = Options().encoding;
  const bool guess = encoding.empty() && header_.codePage == 0;
  if (encoding.empty()) encoding = "CP" + std::to_string(guess ? 437 : header_.codePage);
  decoder_.SetEncoding(encoding.c_str(), guess);
  for (const PARADOX_FIELD& field : header_.fields) {
    const std::size_t bytes = BytesOf(field.type);
    if (bytes != 0 && bytes != field.bytes) {
      return FailFile("the size of the field \"" + decoder_.Decode(field.name) + "\" is damaged");
    }
    if (!IsRead(field.type)) {
      leftOut_ += (leftOut_.empty() ? "" : ", ") + decoder_.Decode(field.name);
      continue;
    }
    wantsMemo_ = wantsMemo_ || field.type == PARADOX_TYPE::Memo;
    fields_.push_back(field);
    out->variables.push_back(VariableOf(field));
  }
  if (fields_.empty()) return FailFile("the table has no fields of values");
  if (wantsMemo_) hasMemo_ = memo_.OpenBeside(Name());
  nextBlock_ = header_.firstBlock;
  block_.resize(static_cast<std::size_t>(header_.blockBytes));
  return true;
}

VARIABLE CParadoxReader::VariableOf(const PARADOX_FIELD& field) {
  constexpr int kNumberWidth = 12;
  constexpr int kMemoWidth = 255;
  VARIABLE variable;
  variable.name = decoder_.Decode(field.name);
  variable.type = ST_TYPE_NUMERIC;
  variable.width = kNumberWidth;
  if (field.type == PARADOX_TYPE::Money) variable.decimals = 2;
  if (field.type == PARADOX_TYPE::Double) variable.decimals = 3;
  if (field.type == PARADOX_TYPE::Decimal) variable.decimals = std::min(field.decimals, 15);
  if (IsText(field.type)) {
    variable.type = ST_TYPE_STRING;
    variable.width = field.type == PARADOX_TYPE::Memo ? kMemoWidth : static_cast<int>(field.bytes);
  }
  if (field.type == PARADOX_TYPE::Date) variable.date = DATE_KIND::DayDate;
  if (field.type == PARADOX_TYPE::Moment) variable.date = DATE_KIND::Millis;
  if (field.type == PARADOX_TYPE::Time) variable.date = DATE_KIND::TimeOfDay;
  if (variable.date != DATE_KIND::None) variable.type = ST_TYPE_DATE;
  return variable;
}

void CParadoxReader::FillBlock(CBlockFiller* out) {
  for (; rowsRead_ < header_.rows && !out->Full(); ++rowsRead_) {
    while (rowAt_ == rowsEnd_) {
      if (!NextBlockOfRows()) return;
    }
    const std::string_view row(block_.data() + rowAt_, header_.rowBytes);
    for (const PARADOX_FIELD& field : fields_) FillField(row, field, out);
    out->EndRecord();
    rowAt_ += header_.rowBytes;
  }
}

// Leads from block to block as they name each other; a circle of blocks ends where more of them
// were read than there are.
bool CParadoxReader::NextBlockOfRows() {
  const std::int64_t blocks =
      (Input().Size() - header_.headerBytes + header_.blockBytes - 1) / header_.blockBytes;
  const auto fail = [this] {
    return FailFile("the blocks end after " + std::to_string(rowsRead_) + " of " +
                    std::to_string(header_.rows) + " rows");
  };
  for (;;) {
    if (nextBlock_ == 0 || nextBlock_ > blocks || ++blocksRead_ > blocks) return fail();
    Input().Seek(header_.headerBytes + (nextBlock_ - 1) * header_.blockBytes);
    const std::int64_t got = Input().Read(block_.data(), header_.blockBytes);
    if (got < static_cast<std::int64_t>(kParadoxBlockHead)) return fail();
    CByteReader in({block_.data(), static_cast<std::size_t>(got)});
    nextBlock_ = in.U16();
    in.Skip(2);
    const std::int16_t last = in.I16();
    if (last < 0) continue;  // has no rows
    const std::size_t rows = static_cast<std::size_t>(last) / header_.rowBytes + 1;
    rowAt_ = kParadoxBlockHead;
    rowsEnd_ = rowAt_ + rows * header_.rowBytes;
    if (rowsEnd_ <= static_cast<std::size_t>(got)) return true;
    rowsEnd_ = rowAt_;
    return fail();
  }
}

void CParadoxReader::FillField(std::string_view row, const PARADOX_FIELD& field,
                               CBlockFiller* out) {
  std::string_view bytes = row.substr(field.offset, field.bytes);
  if (field.type == PARADOX_TYPE::Text) return out->Text(&decoder_, bytes);
  if (field.type == PARADOX_TYPE::Memo) {
    memo_.Read(bytes, &bytes);
    return out->Text(&decoder_, bytes);
  }
  if (AllZeros(bytes)) return out->MissingNumber(ST_STATUS_MISSING);
  double number = 0;
  switch (field.type) {
    case PARADOX_TYPE::Money:
    case PARADOX_TYPE::Double:
    case PARADOX_TYPE::Moment:
      number = Double(bytes);
      break;
    case PARADOX_TYPE::Logical:
      number = static_cast<unsigned char>(bytes[0]) & 1U;
      break;
    case PARADOX_TYPE::Decimal:
      number = Decimal(bytes);
      break;
    case PARADOX_TYPE::Time:
      number = Int(bytes) / kMillisOfSecond;
      break;
    default:
      number = Int(bytes);
      break;
  }
  std::isfinite(number) ? out->Number(number) : out->MissingNumber(ST_STATUS_MISSING);
}

std::vector<std::string> CParadoxReader::Notes() const {
  std::vector<std::string> notes;
  if (!leftOut_.empty()) {
    notes.push_back("Fields of pictures, objects and bytes were left out: " + leftOut_ + ".");
  }
  if (wantsMemo_ && !hasMemo_) {
    notes.emplace_back(
        "The memo file (.mb) is not there: texts that do not fit into the table are empty.");
  }
  return notes;
}

}  // namespace

// There is no mark: kind, size of a block, version and the fields' types must fit.
bool IsParadox(std::string_view first) {
  constexpr unsigned kVersion3 = 3;
  constexpr unsigned kVersion7 = 12;
  CByteReader in(first);
  const unsigned rowBytes = in.U16();
  const unsigned headerBytes = in.U16();
  const unsigned kind = in.U8();
  const unsigned blockUnits = in.U8();
  in.Seek(0x21);
  const unsigned fields = in.U16();
  in.Seek(0x39);
  const unsigned version = in.U8();
  in.Seek(version >= 5 ? 0x78 : 0x58);
  const unsigned type = in.U8();
  return in.Ok() && rowBytes > 0 && headerBytes >= 0x58 && kind <= 8 && blockUnits >= 1 &&
         blockUnits <= 32 && fields > 0 && fields <= 255 && version >= kVersion3 &&
         version <= kVersion7 && type >= 1 && type <= 0x18;
}

std::unique_ptr<CReader> ReadParadox() {
  return std::make_unique<CParadoxReader>();
}

}  // namespace statrn32
