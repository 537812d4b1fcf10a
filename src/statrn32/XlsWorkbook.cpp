#include "statrn32/XlsWorkbook.h"

#include <bit>
#include <cmath>

#include "statrn32/CompoundFile.h"
#include "statrn32/ExcelFiles.h"
#include "statrn32/InputFile.h"
#include "statrn32/SheetReader.h"
#include "statrn32/Utf16.h"

namespace statrn32 {
namespace {

enum RECORD_ID : unsigned {
  kInteger2 = 0x0002,
  kNumber2 = 0x0003,
  kLabel2 = 0x0004,
  kBoolErr2 = 0x0005,
  kFormula = 0x0006,  // of versions 2, 5 and 8
  kString2 = 0x0007,
  kEof = 0x000A,
  kFormat2 = 0x001E,  // of versions 2 and 3
  kDateMode = 0x0022,
  kFilePass = 0x002F,
  kContinue = 0x003C,
  kCodePage = 0x0042,
  kXf2 = 0x0043,
  kBoundSheet = 0x0085,
  kMulRk = 0x00BD,
  kRString = 0x00D6,
  kXf = 0x00E0,
  kSst = 0x00FC,
  kLabelSst = 0x00FD,
  kNumber = 0x0203,
  kLabel = 0x0204,
  kBoolErr = 0x0205,
  kFormula3 = 0x0206,
  kString = 0x0207,
  kXf3 = 0x0243,
  kRk = 0x027E,
  kFormula4 = 0x0406,
  kFormat = 0x041E,
  kXf4 = 0x0443,
};

bool IsBof(unsigned id) {
  return id == 0x0009 || id == 0x0209 || id == 0x0409 || id == 0x0809;
}

// Numbers in four bytes: bit 0 divides by 100, bit 1 marks a whole number of 30 bits, else the
// bits are the upper ones of a double.
double UnpackNumber(std::uint32_t packed) {
  const double number =
      (packed & 2) != 0
          ? static_cast<double>(static_cast<std::int32_t>(packed) >> 2)
          : std::bit_cast<double>(static_cast<std::uint64_t>(packed & 0xFFFFFFFCU) << 32);
  return (packed & 1) != 0 ? number / 100 : number;
}

// The shared texts run on over records; a text that is cut by the border says anew in its first
// byte whether its characters have one byte or two.
class CSharedTexts {
 public:
  explicit CSharedTexts(std::vector<std::string_view> parts) : parts_(std::move(parts)) {}

  // False at the end of the parts.
  bool Next(std::string* utf8) {
    std::size_t left = static_cast<std::size_t>(Number(2));
    unsigned flags = static_cast<unsigned>(Number(1));
    const std::uint64_t runs = (flags & kRich) != 0 ? Number(2) : 0;
    const std::uint64_t extra = (flags & kPhonetic) != 0 ? Number(4) : 0;
    if (!ok_) return false;
    while (left > 0) {
      if (at_ == Part().size()) {
        if (!NextPart()) return false;
        flags = static_cast<unsigned>(Number(1));
      }
      const std::size_t width = (flags & kWide) != 0 ? 2 : 1;
      const std::size_t here = std::min(left, (Part().size() - at_) / width);
      if (here == 0) return false;
      const std::string_view bytes = Part().substr(at_, here * width);
      width == 2 ? AppendUtf16(bytes, utf8) : AppendLatin1(bytes, utf8);
      at_ += here * width;
      left -= here;
    }
    return Skip(runs * 4 + extra);
  }

 private:
  static constexpr unsigned kWide = 1;
  static constexpr unsigned kPhonetic = 4;
  static constexpr unsigned kRich = 8;

  std::string_view Part() const {
    return part_ < parts_.size() ? parts_[part_] : std::string_view();
  }
  bool NextPart() {
    ++part_;
    at_ = 0;
    ok_ = ok_ && part_ < parts_.size();
    return ok_;
  }
  std::uint64_t Number(int bytes) {
    std::uint64_t number = 0;
    for (int i = 0; i < bytes; ++i) {
      while (ok_ && at_ >= Part().size()) NextPart();
      if (!ok_) return 0;
      number |= static_cast<std::uint64_t>(static_cast<unsigned char>(Part()[at_++])) << 8 * i;
    }
    return number;
  }
  bool Skip(std::uint64_t bytes) {
    while (ok_ && bytes > 0) {
      const std::uint64_t here = std::min<std::uint64_t>(bytes, Part().size() - at_);
      at_ += static_cast<std::size_t>(here);
      bytes -= here;
      if (bytes > 0) NextPart();
    }
    return ok_;
  }

  std::vector<std::string_view> parts_;
  std::size_t part_ = 0;
  std::size_t at_ = 0;
  bool ok_ = true;
};

}  // namespace

DATE_KIND BuiltInDateKind(unsigned format) {
  const auto within = [&](unsigned first, unsigned last) {
    return format >= first && format <= last;
  };
  if (within(14, 17) || within(27, 31) || within(50, 58) || format == 36) {
    return DATE_KIND::SerialDate;
  }
  if (within(18, 21) || within(32, 35) || within(45, 47)) return DATE_KIND::SerialTime;
  return format == 22 ? DATE_KIND::SerialMoment : DATE_KIND::None;
}

bool CXlsWorkbook::Open(const std::string& name, const READ_OPTIONS& options) {
  encodingChosen_ = !options.encoding.empty();
  decoder_.SetEncoding(encodingChosen_ ? options.encoding.c_str() : "CP1252", !encodingChosen_);
  if (!ReadStream(name) || !ReadVersion()) return false;
  if (version_ >= 5) return ReadGlobals();
  places_.push_back({"Sheet1", firstRecord_});
  // The formats of the old versions stand among the cells.
  std::size_t at = firstRecord_;
  for (RECORD record; NextRecord(&at, &record) && record.id != kEof;) {
    if (!ReadGlobal(record, at)) return false;
  }
  return true;
}

bool CXlsWorkbook::ReadStream(const std::string& name) {
  CInputFile file;
  if (!file.Open(name)) return Fail("the file cannot be opened");
  std::string magic(kCompoundMagic.size(), '\0');
  if (file.Read(magic.data(), static_cast<std::int64_t>(magic.size())) < 4) {
    return Fail("the file is too short");
  }
  if (magic != kCompoundMagic) {
    stream_.resize(static_cast<std::size_t>(file.Size()));
    file.Seek(0);
    return file.Read(stream_.data(), file.Size()) == file.Size() || Fail("the file has changed");
  }
  CCompoundFile compound;
  std::string error;
  if (!compound.Open(name, &error)) return Fail(error);
  if (compound.ReadStream("Workbook", &stream_) || compound.ReadStream("Book", &stream_)) {
    return true;
  }
  for (const std::string& child : compound.Names("")) {
    if (child == "EncryptedPackage") {
      return Fail("this is a workbook protected by a password; please save it without one first");
    }
  }
  return Fail("this compound file holds no Excel workbook");
}

bool CXlsWorkbook::ReadVersion() {
  constexpr unsigned kVersion8 = 0x0600;
  RECORD record;
  std::size_t at = 0;
  if (!NextRecord(&at, &record) || !IsBof(record.id)) {
    return Fail("the first record is not the beginning of a workbook");
  }
  const unsigned number = CByteReader(record.body).U16();
  if (record.id == 0x0809) {
    version_ = number == kVersion8 ? 8 : 5;
  } else {
    version_ = record.id == 0x0409 ? 4 : record.id == 0x0209 ? 3 : 2;
  }
  firstRecord_ = at;
  return true;
}

bool CXlsWorkbook::NextRecord(std::size_t* at, RECORD* out) const {
  CByteReader in(stream_);
  in.Seek(*at);
  out->id = in.U16();
  out->body = in.Bytes(in.U16());
  *at = in.Position();
  return in.Ok();
}

bool CXlsWorkbook::ReadGlobals() {
  std::size_t at = firstRecord_;
  RECORD record;
  for (bool more = true; more;) {
    if (!NextRecord(&at, &record)) return Fail("the workbook's first part is cut off");
    more = record.id != kEof;
    if (more && !ReadGlobal(record, at)) return false;
  }
  return true;
}

bool CXlsWorkbook::ReadGlobal(const RECORD& record, std::size_t at) {
  switch (record.id) {
    case kFilePass:
      return Fail("this is a workbook protected by a password; please save it without one first");
    case kCodePage:
      ReadCodePage(CByteReader(record.body).U16());
      break;
    case kDateMode:
      from1904_ = CByteReader(record.body).U16() == 1;
      break;
    case kFormat:
    case kFormat2:
      ReadFormat(record);
      break;
    case kXf:
    case kXf2:
    case kXf3:
    case kXf4:
      ReadCellFormat(record);
      break;
    case kBoundSheet:
      ReadPlace(record);
      break;
    case kSst:
      ReadSharedTexts(record, at);
      break;
    default:
      break;
  }
  return true;
}

void CXlsWorkbook::ReadCodePage(unsigned codePage) {
  constexpr unsigned kMac = 0x8000;
  constexpr unsigned kMacToo = 10000;
  constexpr unsigned kWindows = 0x8001;
  constexpr unsigned kUnicode = 1200;
  if (encodingChosen_ || codePage == kUnicode) return;
  const bool mac = codePage == kMac || codePage == kMacToo;
  const std::string name = "CP" + std::to_string(codePage == kWindows ? 1252 : codePage);
  decoder_.SetEncoding(mac ? "MACINTOSH" : name.c_str());
}

// A text whose length stands before it: in version 8 with a byte of flags and perhaps runs.
std::string CXlsWorkbook::LongText(CByteReader* in, std::size_t length) {
  constexpr unsigned kWide = 1;
  constexpr unsigned kPhonetic = 4;
  constexpr unsigned kRich = 8;
  if (version_ < 8) return decoder_.Decode(in->Bytes(std::min(length, in->Left())));
  const unsigned flags = in->U8();
  if ((flags & kRich) != 0) in->Skip(2);
  if ((flags & kPhonetic) != 0) in->Skip(4);
  std::string text;
  if ((flags & kWide) != 0) {
    AppendUtf16(in->Bytes(std::min(length * 2, in->Left())), &text);
  } else {
    AppendLatin1(in->Bytes(std::min(length, in->Left())), &text);
  }
  return text;
}

void CXlsWorkbook::ReadFormat(const RECORD& record) {
  CByteReader in(record.body);
  auto index = static_cast<unsigned>(formats_.size());
  if (record.id == kFormat) {
    const unsigned own = in.U16();
    if (version_ >= 5) index = own;
  }
  const std::size_t length = version_ >= 8 ? in.U16() : in.U8();
  formats_.emplace_back(index, SheetDateKind(LongText(&in, length)));
}

void CXlsWorkbook::ReadCellFormat(const RECORD& record) {
  CByteReader in(record.body);
  unsigned format = 0;
  if (record.id == kXf) {
    in.Skip(2);
    format = in.U16();
  } else {
    in.Skip(record.id == kXf2 ? 2 : 1);
    format = record.id == kXf2 ? in.U8() & 0x3FU : in.U8();
  }
  cellFormats_.push_back(format);
}

DATE_KIND CXlsWorkbook::KindOfFormat(unsigned format) const {
  for (auto entry = formats_.rbegin(); entry != formats_.rend(); ++entry) {
    if (entry->first == format) return entry->second;
  }
  return version_ >= 5 ? BuiltInDateKind(format) : DATE_KIND::None;
}

void CXlsWorkbook::ReadPlace(const RECORD& record) {
  CByteReader in(record.body);
  const std::size_t begin = in.U32();
  in.Skip(1);
  const bool worksheet = in.U8() == 0;
  const std::size_t length = in.U8();
  std::string name = LongText(&in, length);
  if (in.Ok() && worksheet && begin < stream_.size()) places_.push_back({std::move(name), begin});
}

void CXlsWorkbook::ReadSharedTexts(const RECORD& record, std::size_t at) {
  CByteReader in(record.body);
  in.Skip(4);
  const std::uint32_t count = in.U32();
  std::vector<std::string_view> parts = {record.body.substr(in.Position())};
  for (RECORD next; NextRecord(&at, &next) && next.id == kContinue;) parts.push_back(next.body);
  CSharedTexts texts(std::move(parts));
  std::string text;
  for (std::uint32_t i = 0; i < count && texts.Next(&text); ++i) {
    textPlaces_.push_back(texts_.size());
    texts_.append(text, 0, text.find('\0')) += '\0';
    text.clear();
  }
}

std::vector<std::string> CXlsWorkbook::Sheets() const {
  std::vector<std::string> names;
  for (const SHEET_PLACE& place : places_) names.push_back(place.name);
  return names;
}

bool CXlsWorkbook::Load(std::size_t sheet, CSheet* out) {
  out->epochDay = from1904_ ? kSerial1904EpochDay : kSerialEpochDay;
  kinds_.clear();
  for (const unsigned format : cellFormats_) kinds_.push_back(KindOfFormat(format));
  stored_.assign(textPlaces_.size(), 0);
  pending_ = {};
  std::size_t at = places_[sheet].begin;
  RECORD record;
  int depth = 0;
  if (version_ >= 5 && (!NextRecord(&at, &record) || !IsBof(record.id))) {
    return Fail("the sheet \"" + places_[sheet].name + "\" does not begin where it should");
  }
  for (;;) {
    if (!NextRecord(&at, &record)) {
      return Fail("the sheet \"" + places_[sheet].name + "\" is cut off");
    }
    if (IsBof(record.id)) {
      ++depth;  // a chart inside the sheet
    } else if (record.id == kEof && depth-- == 0) {
      return true;
    } else if (depth == 0 && !ReadCell(record, out)) {
      return Fail("a cell of the sheet \"" + places_[sheet].name + "\" is damaged");
    }
  }
}

// Row, column and cell format; in version 2 the latter are three bytes of their own.
bool CXlsWorkbook::ReadPlaceOfCell(CByteReader* in, unsigned* cellFormat) {
  row_ = in->U16();
  column_ = in->U16();
  if (version_ == 2) {
    *cellFormat = in->U8() & 0x3FU;
    in->Skip(2);
  } else {
    *cellFormat = in->U16();
  }
  return in->Ok();
}

void CXlsWorkbook::PutNumber(unsigned cellFormat, double number, CSheet* out) {
  const DATE_KIND kind = cellFormat < kinds_.size() ? kinds_[cellFormat] : DATE_KIND::None;
  std::isfinite(number) ? out->Number(row_, column_, number, kind) : out->Error(row_, column_);
}

bool CXlsWorkbook::ReadCell(const RECORD& record, CSheet* out) {
  CByteReader in(record.body);
  unsigned cellFormat = 0;
  switch (record.id) {
    case kInteger2:
    case kNumber2:
    case kNumber:
    case kRk: {
      if (!ReadPlaceOfCell(&in, &cellFormat)) return false;
      const double number = record.id == kInteger2 ? in.U16()
                            : record.id == kRk     ? UnpackNumber(in.U32())
                                                   : in.F64();
      PutNumber(cellFormat, number, out);
      return in.Ok();
    }
    case kMulRk:
      ReadPackedNumbers(record, out);
      return true;
    case kLabel2:
    case kLabel:
    case kRString:
    case kLabelSst:
      ReadLabel(record, out);
      return true;
    case kBoolErr2:
    case kBoolErr:
      if (!ReadPlaceOfCell(&in, &cellFormat)) return false;
      ReadLogicalOrError(&in, out);
      return in.Ok();
    case kFormula:
    case kFormula3:
    case kFormula4:
      ReadFormula(record, out);
      return true;
    case kString2:
    case kString: {
      const std::size_t length = record.id == kString2 ? in.U8() : in.U16();
      if (pending_.waits) out->Text(pending_.row, pending_.column, LongText(&in, length));
      pending_.waits = false;
      return true;
    }
    default:
      return true;
  }
}

void CXlsWorkbook::ReadLogicalOrError(CByteReader* in, CSheet* out) {
  const unsigned value = in->U8();
  const bool error = in->U8() == 1;
  error ? out->Error(row_, column_) : out->Logical(row_, column_, value != 0);
}

void CXlsWorkbook::ReadLabel(const RECORD& record, CSheet* out) {
  CByteReader in(record.body);
  unsigned cellFormat = 0;
  if (!ReadPlaceOfCell(&in, &cellFormat)) return;
  if (record.id != kLabelSst) {
    const std::size_t length = record.id == kLabel2 ? in.U8() : in.U16();
    out->Text(row_, column_, LongText(&in, length));
    return;
  }
  const std::size_t index = in.U32();
  if (index >= textPlaces_.size()) return;
  if (stored_[index] == 0) stored_[index] = out->AddText(texts_.data() + textPlaces_[index]);
  out->StoredText(row_, column_, stored_[index]);
}

// The result: a double, or with FFFF in its last bytes a kind.
void CXlsWorkbook::ReadFormula(const RECORD& record, CSheet* out) {
  constexpr std::uint64_t kNoNumber = 0xFFFF;
  enum : unsigned { kText = 0, kLogical = 1, kError = 2 };
  CByteReader in(record.body);
  unsigned cellFormat = 0;
  if (!ReadPlaceOfCell(&in, &cellFormat)) return;
  const std::uint64_t result = in.Unsigned(8);
  if (!in.Ok()) return;
  if (result >> 48 != kNoNumber) return PutNumber(cellFormat, std::bit_cast<double>(result), out);
  const unsigned kind = result & 0xFF;
  if (kind == kText) pending_ = {true, row_, column_};
  if (kind == kLogical) out->Logical(row_, column_, (result >> 16 & 0xFF) != 0);
  if (kind == kError) out->Error(row_, column_);
}

// Row, first column, then a cell format and a packed number a cell, and the last column.
void CXlsWorkbook::ReadPackedNumbers(const RECORD& record, CSheet* out) {
  CByteReader in(record.body);
  row_ = in.U16();
  column_ = in.U16();
  while (in.Left() >= 6) {
    const unsigned cellFormat = in.U16();
    PutNumber(cellFormat, UnpackNumber(in.U32()), out);
    ++column_;
  }
}

std::unique_ptr<CReader> ReadXls() {
  return std::make_unique<CSheetReader>(7, std::make_unique<CXlsWorkbook>());
}

}  // namespace statrn32
