#include "statrn32/SigmaPlotWorkbook.h"

#include <cmath>

#include "statrn32/SheetReader.h"
#include "statrn32/SigmaPlotFiles.h"

namespace statrn32 {
namespace {

constexpr std::int32_t kCode = 21;
constexpr std::string_view kGroupMark("\x87\x20\x13\0", 4);
constexpr std::size_t kCellBytes = 16;
constexpr std::uint32_t kMostColumns = 32767;

}  // namespace

bool CSigmaPlotWorkbook::Open(const std::string& name, const READ_OPTIONS& options) {
  decoder_.SetEncoding(options.encoding, "CP1252");
  std::string error;
  if (!file_.Open(name, &error)) return Fail(error);
  return ReadDirectory() ||
         Fail("this compound file holds no SigmaPlot notebook, or a damaged one");
}

bool CSigmaPlotWorkbook::ReadDirectory() {
  constexpr unsigned kWorksheet = 1;
  std::string directory;
  if (!file_.ReadStream("JNBDirectory", &directory)) return false;
  CByteReader in(directory);
  const unsigned items = in.U16();
  for (unsigned i = 0; i < items && in.Ok(); ++i) {
    const unsigned kind = in.U16();
    const std::string_view title = in.Bytes(in.U8());
    in.Skip(2);
    const std::string_view storage = in.Bytes(in.U8());
    in.Skip(3);
    if (in.Ok() && kind == kWorksheet) {
      places_.push_back({decoder_.Decode(title), decoder_.Decode(storage)});
    }
  }
  return in.Ok();
}

std::vector<std::string> CSigmaPlotWorkbook::Sheets() const {
  std::vector<std::string> titles;
  for (const PLACE& place : places_) titles.push_back(place.title);
  return titles;
}

bool CSigmaPlotWorkbook::Load(std::size_t sheet, CSheet* out) {
  std::string contents;
  if (!file_.ReadStream(places_[sheet].storage + "/JNBContents", &contents)) {
    return Fail("the worksheet \"" + places_[sheet].title + "\" cannot be read");
  }
  const std::string_view bytes = contents;
  for (std::size_t at = bytes.find(kGroupMark); at != std::string_view::npos;) {
    CByteReader in(bytes.substr(at + kGroupMark.size()));
    const std::size_t size = in.U32();
    const std::string_view body = in.Bytes(size);
    if (in.Ok()) PutColumn(body, out);
    at = bytes.find(kGroupMark, at + kGroupMark.size() + body.size());
  }
  return true;
}

// The titles make row 0. Every column that has a value has one, so that the first row of values is
// never taken for names.
void CSigmaPlotWorkbook::PutColumn(std::string_view body, CSheet* out) {
  constexpr std::uint32_t kStart = 6;
  constexpr std::uint32_t kRowTitles = 0x10;
  CByteReader in(body);
  const bool known = in.U32() == kStart;
  const std::uint32_t flags = in.U32();
  const std::uint32_t column = in.U32();
  const std::uint32_t first = in.U32();
  in.Skip(4);
  const std::uint32_t last = in.U32();
  in.Skip(8);
  // More rows than the bytes hold are not there.
  if (!known || !in.Ok() || column >= kMostColumns || last < first || last == 0xFFFFFFFF) return;
  const std::uint32_t rows = last - first + 1;
  CSheet skipped;
  if ((flags & kRowTitles) != 0) {
    for (std::uint32_t i = 0; i < rows && in.Left() > 0; ++i) PutCell(&in, i, 0, &skipped);
  }
  CSheet title;
  PutCell(&in, 0, column, &title);
  const std::size_t before = out->Cells().size();
  for (std::uint32_t i = 0; i < rows && in.Left() >= kCellBytes; ++i) {
    PutCell(&in, first + i + 1, column, out);
  }
  if (out->Cells().size() == before) return;
  const bool named = !title.Cells().empty() && title.Cells()[0].kind == SHEET_KIND::Text;
  out->Text(
      0, column,
      named ? std::string(title.TextOf(title.Cells()[0])) : "Col " + std::to_string(column + 1));
}

// False at the end of the bytes.
bool CSigmaPlotWorkbook::PutCell(CByteReader* in, std::uint32_t row, std::uint32_t column,
                                 CSheet* out) {
  constexpr unsigned kNumber = 0x16;
  constexpr unsigned kLongText = 0x20;
  const std::string_view cell = in->Bytes(kCellBytes);
  if (cell.empty()) return false;
  const auto kind = static_cast<unsigned char>(cell.back());
  if (kind == kNumber) {
    const double number = CByteReader(cell).F64();
    if (std::isfinite(number)) out->Number(row, column, number);
  } else if (kind < kCellBytes) {
    out->Text(row, column, decoder_.Decode(cell.substr(0, kind)));
  } else if (kind == kLongText) {
    out->Text(row, column, decoder_.Decode(in->Bytes(CByteReader(cell.substr(4)).U32())));
  }
  return true;
}

bool IsSigmaPlot(std::string_view first) {
  return first.substr(0, kCompoundMagic.size()) == kCompoundMagic;
}

std::unique_ptr<CReader> ReadSigmaPlot() {
  return std::make_unique<CSheetReader>(kCode, std::make_unique<CSigmaPlotWorkbook>());
}

}  // namespace statrn32
