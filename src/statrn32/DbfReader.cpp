#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/BesideFile.h"
#include "statrn32/ByteReader.h"
#include "statrn32/DbfFiles.h"
#include "statrn32/DbfHeader.h"
#include "statrn32/DbfMemo.h"
#include "statrn32/FileReader.h"

namespace statrn32 {
namespace {

constexpr double kDayMillis = 86'400'000;
constexpr std::int64_t kJulianOf1970 = 2440588;  // the Julian day of 1970-01-01, at noon

std::string_view WithoutBlanks(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\0')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.remove_suffix(1);
  return text;
}

// False for blanks, asterisks (a number that did not fit) and anything that is no number.
bool ParseDbfNumber(std::string_view text, double* number) {
  text = WithoutBlanks(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  const char* const end = text.data() + text.size();
  const auto [stop, failed] = std::from_chars(text.data(), end, *number);
  return failed == std::errc() && stop == end && std::isfinite(*number);
}

bool ParseDbfDate(std::string_view text, double* serial) {
  int digits = 0;
  if (text.size() < 8) return false;
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + 8, digits);
  if (failed != std::errc() || stop != text.data() + 8) return false;
  return SerialOfDate(digits / 10000, digits / 100 % 100, digits % 100, serial);
}

// Big-endian numbers whose bits were turned so that they sort as bytes.
double SortableInt32(std::string_view bytes) {
  CByteReader in(bytes);
  in.SetBigEndian(true);
  return static_cast<std::int32_t>(in.U32() ^ 0x80000000U);
}
double SortableDouble(std::string_view bytes) {
  CByteReader in(bytes);
  in.SetBigEndian(true);
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  const std::uint64_t bits = in.Unsigned(8);
  return std::bit_cast<double>((bits & kSign) != 0 ? bits ^ kSign : ~bits);
}

class CDbfReader final : public CFileReader {
 public:
  CDbfReader() : CFileReader(6) {}

  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }
  std::vector<std::string> Notes() const override;

 private:
  VARIABLE VariableOf(const DBF_FIELD& field);
  void ChooseEncoding();
  bool IsNull(const char* record, const DBF_FIELD& field) const;
  bool BitOf(const char* record, int bit) const;
  void FillField(const char* record, const DBF_FIELD& field, CBlockFiller* out);
  void FillText(const char* record, const DBF_FIELD& field, CBlockFiller* out);
  bool NumberOf(const DBF_FIELD& field, std::string_view bytes, double* number) const;
  bool BinaryNumber(const DBF_FIELD& field, std::string_view bytes, double* number) const;
  bool MomentOf(std::string_view bytes, double* serial) const;
  std::uint64_t MemoBlock(std::string_view bytes) const;

  DBF_HEADER header_;
  CTextDecoder decoder_;
  CDbfMemo memo_;
  bool wantsMemo_ = false;
  bool hasMemo_ = false;
  std::size_t nullBits_ = 0;  // where in the record; 0: nowhere
  std::size_t nullBytes_ = 0;
  std::int64_t next_ = 0;  // record
  std::int64_t deleted_ = 0;
  std::string record_;
};

bool IsTextField(char type) {
  return std::string_view("CMVGPQW").find(type) != std::string_view::npos;
}

bool CDbfReader::ReadHeader(DICTIONARY* out) {
  std::string error;
  if (!ReadDbfHeader(&Input(), &header_, &error)) return FailFile(error);
  ChooseEncoding();
  for (const DBF_FIELD& field : header_.fields) {
    if (field.type == '0') {
      nullBits_ = field.offset;
      nullBytes_ = field.length;
    }
    wantsMemo_ = wantsMemo_ || field.type == 'M';
    if (!field.hidden) out->variables.push_back(VariableOf(field));
  }
  if (wantsMemo_) hasMemo_ = memo_.OpenBeside(Name());
  Input().Seek(header_.begin);
  record_.resize(header_.recordBytes);
  return true;
}

// A side file "NAME.cpg" names the encoding, else the header's code page; what the user says goes
// before both.
void CDbfReader::ChooseEncoding() {
  const char* const byHeader = EncodingOfDbf(header_.codePage);
  std::string encoding = byHeader != nullptr ? byHeader : "";
  if (header_.family == DBF_FAMILY::Dbase2) encoding = "CP437";
  CInputFile side;
  const std::string name = FindBeside(Name(), "cpg");
  char text[32] = {};
  if (!name.empty() && side.Open(name) && side.Read(text, sizeof text - 1) > 0) {
    encoding = Trimmed(text);
    const bool number = encoding.find_first_not_of("0123456789") == std::string::npos;
    if (number) encoding.insert(0, "CP");
  }
  if (!Options().encoding.empty()) encoding = Options().encoding;
  decoder_.SetEncoding(encoding.c_str());
}

VARIABLE CDbfReader::VariableOf(const DBF_FIELD& field) {
  VARIABLE variable;
  variable.name = decoder_.Decode(field.name);
  variable.width = static_cast<int>(field.length);
  variable.decimals = field.type == 'C' ? 0 : field.decimals;
  variable.type = IsTextField(field.type) ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
  if (field.type == 'D') variable.date = DATE_KIND::SerialDate;
  if (field.type == 'T' || field.type == '@') variable.date = DATE_KIND::SerialMoment;
  if (variable.date != DATE_KIND::None) variable.type = ST_TYPE_DATE;
  return variable;
}

void CDbfReader::FillBlock(CBlockFiller* out) {
  constexpr char kDeleted = '*';
  for (; next_ < header_.records && !out->Full(); ++next_) {
    const auto bytes = static_cast<std::int64_t>(record_.size());
    if (!ReadExactly(record_.data(), bytes, "the records")) return;
    if (record_[0] == kDeleted) {
      ++deleted_;
      continue;
    }
    for (const DBF_FIELD& field : header_.fields) {
      if (!field.hidden) FillField(record_.data(), field, out);
    }
    out->EndRecord();
  }
}

bool CDbfReader::BitOf(const char* record, int bit) const {
  const auto at = static_cast<std::size_t>(bit) / 8;
  if (bit < 0 || nullBits_ == 0 || at >= nullBytes_) return false;
  return (static_cast<unsigned char>(record[nullBits_ + at]) >> bit % 8 & 1) != 0;
}

bool CDbfReader::IsNull(const char* record, const DBF_FIELD& field) const {
  return BitOf(record, field.nullBit);
}

void CDbfReader::FillField(const char* record, const DBF_FIELD& field, CBlockFiller* out) {
  if (IsTextField(field.type)) return FillText(record, field, out);
  double number = 0;
  const std::string_view bytes(record + field.offset, field.length);
  if (IsNull(record, field) || !NumberOf(field, bytes, &number)) {
    return out->MissingNumber(ST_STATUS_MISSING);
  }
  out->Number(number);
}

void CDbfReader::FillText(const char* record, const DBF_FIELD& field, CBlockFiller* out) {
  std::string_view bytes(record + field.offset, field.length);
  if (IsNull(record, field)) return out->Text({}, ST_STATUS_MISSING);
  if (field.type == 'M') {
    bytes = memo_.Read(MemoBlock(bytes));
  } else if (field.type == 'V' && BitOf(record, field.shortBit) && !bytes.empty()) {
    const auto length = static_cast<unsigned char>(bytes.back());
    bytes = bytes.substr(0, std::min<std::size_t>(length, bytes.size()));
  } else if (field.type != 'C' && field.type != 'V') {
    bytes = {};  // pictures, objects, bytes
  }
  out->Text(&decoder_, bytes);
}

bool CDbfReader::NumberOf(const DBF_FIELD& field, std::string_view bytes, double* number) const {
  switch (field.type) {
    case 'N':
    case 'F':
      return ParseDbfNumber(bytes, number);
    case 'D':
      return ParseDbfDate(bytes, number);
    case 'L': {
      const char c = bytes.empty() ? ' ' : bytes.front();
      const bool yes = c == 'T' || c == 't' || c == 'Y' || c == 'y';
      *number = yes ? 1 : 0;
      return yes || c == 'F' || c == 'f' || c == 'N' || c == 'n';
    }
    default:
      return BinaryNumber(field, bytes, number);
  }
}

bool CDbfReader::BinaryNumber(const DBF_FIELD& field, std::string_view bytes,
                              double* number) const {
  constexpr double kMoneyUnits = 10000;
  const bool sortable = header_.family == DBF_FAMILY::Dbase7;
  CByteReader in(bytes);
  switch (field.type) {
    case 'I':
    case '+':
      *number = sortable ? SortableInt32(bytes) : in.I32();
      return bytes.size() >= 4;
    case 'O':
      *number = SortableDouble(bytes);
      break;
    case 'B':
      *number = in.F64();
      break;
    case 'Y':
      *number = static_cast<double>(in.I64()) / kMoneyUnits;
      break;
    default:
      return MomentOf(bytes, number);
  }
  return bytes.size() >= 8 && std::isfinite(*number);
}

// Julian day and milliseconds since midnight; zero stands for no date.
bool CDbfReader::MomentOf(std::string_view bytes, double* serial) const {
  CByteReader in(bytes);
  in.SetBigEndian(header_.family == DBF_FAMILY::Dbase7);
  const std::int32_t day = in.I32();
  const std::int32_t millis = in.I32();
  *serial = SerialOfDay(day - kJulianOf1970) + millis / kDayMillis;
  return in.Ok() && day > 0 && millis >= 0 && millis <= kDayMillis;
}

// Ten digits, in FoxPro also four bytes.
std::uint64_t CDbfReader::MemoBlock(std::string_view bytes) const {
  if (bytes.size() == 4) return CByteReader(bytes).U32();
  double block = 0;
  const bool there = ParseDbfNumber(bytes, &block) && block >= 0 && block < 4294967296.0;
  return there ? static_cast<std::uint64_t>(block) : 0;
}

std::vector<std::string> CDbfReader::Notes() const {
  std::vector<std::string> notes;
  if (deleted_ > 0) {
    notes.push_back("Records marked as deleted were left out: " + std::to_string(deleted_) + ".");
  }
  if (wantsMemo_ && !hasMemo_) {
    notes.emplace_back("The memo file (.dbt or .fpt) is not there: its texts are empty.");
  }
  return notes;
}

}  // namespace

std::unique_ptr<CReader> ReadDbf() {
  return std::make_unique<CDbfReader>();
}

}  // namespace statrn32
