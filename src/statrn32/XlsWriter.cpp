#include <algorithm>
#include <array>
#include <cmath>

#include "host/statrn32.h"
#include "statrn32/ByteWriter.h"
#include "statrn32/CompoundFile.h"
#include "statrn32/ExcelFiles.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/Utf16.h"

namespace statrn32 {
namespace {

constexpr unsigned kVersion8 = 0x0600;
constexpr unsigned kCellFormat = 15;  // behind the fifteen of the styles
constexpr const char* kSheetName = "Data";

void PutRecordTo(CByteWriter* out, unsigned id, std::string_view body) {
  out->U16(id).U16(body.size()).Bytes(body);
}

std::string Words(std::initializer_list<unsigned> words) {
  CByteWriter body;
  for (const unsigned word : words) body.U16(word);
  return body.Data();
}

std::string BeginOf(unsigned kind) {
  CByteWriter body;
  body.U16(kVersion8).U16(kind).U16(0x0DBB).U16(1996).U32(0x41).U32(kVersion8);
  return body.Data();
}

std::string Font() {
  CByteWriter body;
  body.U16(200).U16(0).U16(0x7FFF).U16(400).U16(0).U8(0).U8(2).U8(0).U8(0).U8(5).U8(0);
  return body.Bytes("Arial").Data();
}

std::string CellFormat(bool style) {
  constexpr unsigned kStyle = 0xFFF5;
  constexpr unsigned kCell = 0x0001;
  CByteWriter body;
  body.U16(0).U16(0).U16(style ? kStyle : kCell).U8(0x20).Zeros(2).U8(style ? 0xF4 : 0x00);
  return body.Zeros(8).U16(0x20C0).Data();
}

class CXlsWriter final : public CFileWriter {
 public:
  CXlsWriter() : CFileWriter(7) {}

 protected:
  bool Create() override;
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override;
  bool Close() override;

 private:
  void PutGlobals();
  void AppendText(std::uint64_t row, std::size_t column, std::string_view text);
  bool Flush();

  CCompoundWriter target_;
  CByteWriter buffer_;
};

bool CXlsWriter::Create() {
  std::string error;
  return target_.Create(Name(), "Workbook", &error) || FailFile("cannot be created: " + error);
}

void CXlsWriter::PutGlobals() {
  constexpr unsigned kGlobals = 5;
  constexpr unsigned kUnicode = 1200;
  PutRecordTo(&buffer_, 0x0809, BeginOf(kGlobals));
  PutRecordTo(&buffer_, 0x0042, Words({kUnicode}));
  PutRecordTo(&buffer_, 0x003D, Words({0, 0, 15000, 10000, 0x38, 0, 0, 1, 600}));
  PutRecordTo(&buffer_, 0x0022, Words({0}));
  for (int i = 0; i < 4; ++i) PutRecordTo(&buffer_, 0x0031, Font());
  for (unsigned i = 0; i < kCellFormat; ++i) PutRecordTo(&buffer_, 0x00E0, CellFormat(true));
  PutRecordTo(&buffer_, 0x00E0, CellFormat(false));
  PutRecordTo(&buffer_, 0x0293, std::string("\x00\x80\x00\xFF", 4));
  const std::size_t place = buffer_.Size() + 4;
  CByteWriter sheet;
  sheet.U32(0).U16(0).U8(4).U8(0).Bytes(kSheetName);
  PutRecordTo(&buffer_, 0x0085, sheet.Data());
  PutRecordTo(&buffer_, 0x000A, {});
  buffer_.Patch(place, buffer_.Size(), 4);
}

bool CXlsWriter::PutHeader() {
  constexpr unsigned kSheet = 0x10;
  PutGlobals();
  PutRecordTo(&buffer_, 0x0809, BeginOf(kSheet));
  CByteWriter size;
  size.U32(0).U32(static_cast<std::uint64_t>(Cases()) + 1).U16(0).U16(Variables().size()).U16(0);
  PutRecordTo(&buffer_, 0x0200, size.Data());
  for (std::size_t i = 0; i < Variables().size(); ++i) AppendText(0, i, Variables()[i].name);
  return true;
}

// Texts stand in their cells, not in a table at the front: so the sheet can be written as it comes.
void CXlsWriter::AppendText(std::uint64_t row, std::size_t column, std::string_view text) {
  const std::string wide = Utf16Of(text);
  CByteWriter body;
  body.U16(row).U16(column).U16(kCellFormat).U16(wide.size() / 2).U8(1).Bytes(wide);
  PutRecordTo(&buffer_, 0x0204, body.Data());
}

bool CXlsWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  const auto row = static_cast<std::uint64_t>(Written()) + 1;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const bool text = Variables()[i].type == ST_TYPE_STRING;
    if (cells[i].missing || (!text && std::isnan(cells[i].number))) continue;
    if (text) {
      if (!cells[i].text.empty()) AppendText(row, i, cells[i].text);
      continue;
    }
    constexpr unsigned kNumber = 0x0203;
    constexpr unsigned kNumberBytes = 14;
    buffer_.U16(kNumber).U16(kNumberBytes).U16(row).U16(i).U16(kCellFormat).F64(cells[i].number);
  }
  constexpr std::size_t kEnough = std::size_t{1} << 17;
  return buffer_.Size() < kEnough || Flush();
}

bool CXlsWriter::PutEnd() {
  PutRecordTo(&buffer_, 0x023E, Words({0x06B6, 0, 0, 64, 0, 0, 0, 0, 0}));
  PutRecordTo(&buffer_, 0x000A, {});
  return Flush();
}

bool CXlsWriter::Flush() {
  const bool written = target_.Write(buffer_.Data());
  buffer_.Clear();
  return written || FailFile("No space left, or the file cannot be written");
}

bool CXlsWriter::Close() {
  return target_.Close() || FailFile("No space left, or the file cannot be completed");
}

}  // namespace

constexpr NAME_RULES kSheetNames = {255,
                                    " !#$%&()*+,-./:;<=>?@[]^_{|}~'0123456789",
                                    " !#$%&()*+,-./:;<=>?@[]^_{|}~'",
                                    false,
                                    false,
                                    true,
                                    {}};
constexpr LIMITS kXlsLimits = {.records = 65535,
                               .variables = 256,
                               .textBytes = 4000,  // so that a cell fits into one record
                               .textRemark =
                                   "An empty text and a missing one are the same. Cases without "
                                   "any value at the end leave no trace."};

bool IsXls(std::string_view first) {
  if (first.substr(0, kCompoundMagic.size()) == kCompoundMagic) return true;
  if (first.size() < 6) return false;
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(first[at]); };
  const bool old = byte(0) == 9 && (byte(1) == 0 || byte(1) == 2 || byte(1) == 4 || byte(1) == 8);
  return old && byte(2) >= 4 && byte(2) <= 16 && byte(3) == 0;
}

std::unique_ptr<CWriter> WriteXls() {
  return std::make_unique<CXlsWriter>();
}

}  // namespace statrn32
