// Worksheets of Lotus 1-2-3 release 2 (.wk1) and Quattro Pro for DOS (.wq1). The layout: records of
// a 16-bit type, a 16-bit length and a body. A cell's body is a byte of format, the column, the row
// and the value.
#include <cmath>
#include <limits>

#include "host/statrn32.h"
#include "statrn32/ByteWriter.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/LotusFiles.h"
#include "statrn32/TextEncoder.h"

namespace statrn32 {
namespace {

enum RECORD { kBegin = 0x0000, kEnd = 0x0001, kRange = 0x0006, kNumber = 0x000E, kLabel = 0x000F };
constexpr unsigned kDefaultFormat = 0xFF;
constexpr std::int64_t kRows = 8192;
constexpr std::int64_t kColumns = 256;
constexpr std::size_t kTextBytes = 240;

class CLotusWriter final : public CFileWriter {
 public:
  explicit CLotusWriter(bool quattro)
      : CFileWriter(quattro ? 11 : 0), quattro_(quattro), encoder_("CP850") {}

  std::vector<std::string> Notes() const override;

 protected:
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override;

 private:
  void BeginRecord(RECORD type, std::size_t bytes) { out_.U16(type).U16(bytes); }
  void AppendText(std::size_t column, std::int64_t row, std::string_view text);
  bool Flush();

  bool quattro_;
  CTextEncoder encoder_;
  CByteWriter out_;
};

bool CLotusWriter::PutHeader() {
  constexpr unsigned kRelease2 = 0x0406;
  constexpr unsigned kQuattro = 0x5120;
  BeginRecord(kBegin, 2);
  out_.U16(quattro_ ? kQuattro : kRelease2);
  BeginRecord(kRange, 8);
  out_.U16(0).U16(0).U16(Variables().size() - 1).U16(static_cast<std::uint64_t>(Cases()));
  for (std::size_t i = 0; i < Variables().size(); ++i) AppendText(i, 0, Variables()[i].name);
  return Flush();
}

// An apostrophe says that the text stands at the left. Behind it Quattro Pro tells the length;
// Lotus ends the text with a NUL.
void CLotusWriter::AppendText(std::size_t column, std::int64_t row, std::string_view text) {
  const std::string bytes = encoder_.Encode(text).substr(0, kTextBytes);
  BeginRecord(kLabel, 5 + 2 + bytes.size());
  out_.U8(kDefaultFormat).U16(column).U16(static_cast<std::uint64_t>(row)).Bytes("'");
  if (quattro_) out_.U8(bytes.size());
  out_.Bytes(bytes);
  if (!quattro_) out_.U8(0);
}

bool CLotusWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  const std::int64_t row = Written() + 1;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const bool text = Variables()[i].type == ST_TYPE_STRING;
    if (cells[i].missing || (!text && std::isnan(cells[i].number))) continue;
    if (text) {
      if (!cells[i].text.empty()) AppendText(i, row, cells[i].text);
      continue;
    }
    BeginRecord(kNumber, 5 + 8);
    out_.U8(kDefaultFormat).U16(i).U16(static_cast<std::uint64_t>(row)).F64(cells[i].number);
  }
  return Flush();
}

bool CLotusWriter::PutEnd() {
  BeginRecord(kEnd, 0);
  return Flush();
}

bool CLotusWriter::Flush() {
  const bool put = Put(out_.Data());
  out_.Clear();
  return put;
}

std::vector<std::string> CLotusWriter::Notes() const {
  std::vector<std::string> notes;
  encoder_.Note(&notes);
  return notes;
}

}  // namespace

constexpr NAME_RULES kLotusNames = {kTextBytes,
                                    " !#$%&()*+,-./:;<=>?@[]^_{|}~'0123456789",
                                    " !#$%&()*+,-./:;<=>?@[]^_{|}~'",
                                    true,
                                    false,
                                    true,
                                    {}};
constexpr LIMITS kLotusLimits = {
    .records = kRows - 1,
    .variables = kColumns,
    .textBytes = kTextBytes,
    .textRemark =
        "Letters outside code page 850 are lost; an empty text and a missing one are the "
        "same. Cases without any value at the end leave no trace."};

std::unique_ptr<CWriter> WriteLotus() {
  return std::make_unique<CLotusWriter>(false);
}
std::unique_ptr<CWriter> WriteQuattro() {
  return std::make_unique<CLotusWriter>(true);
}

}  // namespace statrn32
