// Worksheets of Lotus 1-2-3 and Quattro Pro as libwps reads them.
#include <algorithm>
#include <cmath>

#include <librevenge-stream/librevenge-stream.h>
#include <libwps/libwps.h>

#include "statrn32/ByteReader.h"
#include "statrn32/ChildReader.h"
#include "statrn32/CompoundFile.h"
#include "statrn32/LotusFiles.h"
#include "statrn32/QuietListener.h"
#include "statrn32/SheetReader.h"
#include "statrn32/TextDecoder.h"
#include "statrn32/TextEncoder.h"

namespace statrn32 {
namespace {

using LIST = librevenge::RVNGPropertyList;

constexpr double kDaySeconds = 86400;

bool Has(const LIST& list, const char* name) {
  return list[name] != nullptr;
}
double NumberOf(const LIST& list, const char* name, double otherwise = 0) {
  return Has(list, name) ? list[name]->getDouble() : otherwise;
}
std::int64_t WholeOf(const LIST& list, const char* name) {
  return Has(list, name) ? list[name]->getInt() : 0;
}

// The library knows some code pages only. It is told this one, which gives each of the upper 128
// bytes a character of its own: so the file's bytes can be had back from its texts.
constexpr const char* kByteForByte = "CP437";

// Texts of the library in the encoding that the file has.
class CWpsTexts {
 public:
  CWpsTexts(const std::string& chosen, const char* usual) { decoder_.SetEncoding(chosen, usual); }

  std::string Decoded(const std::string& text);
  std::string GuessedEncoding() const { return decoder_.GuessedEncoding(); }

 private:
  CTextEncoder encoder_{kByteForByte};
  CTextDecoder decoder_;
};

// A character that no byte gave, of a font of symbols say, leaves its text as it is.
std::string CWpsTexts::Decoded(const std::string& text) {
  const std::int64_t before = encoder_.Lost();
  const std::string bytes = encoder_.Encode(text);
  if (encoder_.Lost() != before) return text;
  std::string decoded;
  decoder_.AppendWhole(bytes, &decoded);
  return decoded;
}

struct WPS_SHEET {
  std::string name;
  CSheet cells;
};

// Gathers the cells of all sheets.
class CCellListener final : public CQuietListener {
 public:
  CCellListener(CWpsTexts* texts, std::vector<WPS_SHEET>* sheets)
      : texts_(texts), sheets_(sheets) {}

  void openSheet(const LIST& list) override;
  void openSheetCell(const LIST& list) override;
  void closeSheetCell() override;
  void insertText(const librevenge::RVNGString& text) override { Append(text.cstr()); }
  void insertSpace() override { Append(" "); }
  void insertTab() override { Append(" "); }
  void insertLineBreak() override { Append(" "); }
  // What stands beside the cells has texts as well.
  void openComment(const LIST&) override { ++aside_; }
  void closeComment() override { --aside_; }
  void openFrame(const LIST&) override { ++aside_; }
  void closeFrame() override { --aside_; }

 private:
  void Append(const char* text) {
    if (!inCell_ || aside_ != 0) return;
    text_ += text;
  }
  void PutDate(CSheet* sheet) const;

  CWpsTexts* texts_;
  std::vector<WPS_SHEET>* sheets_;
  LIST cell_;
  std::string text_;
  bool inCell_ = false;
  int aside_ = 0;
};

void CCellListener::openSheet(const LIST& list) {
  WPS_SHEET& sheet = sheets_->emplace_back();
  if (Has(list, "librevenge:sheet-name")) {
    sheet.name = texts_->Decoded(list["librevenge:sheet-name"]->getStr().cstr());
  }
}

void CCellListener::openSheetCell(const LIST& list) {
  cell_ = list;
  text_.clear();
  inCell_ = true;
}

void CCellListener::closeSheetCell() {
  inCell_ = false;
  const std::int64_t row = WholeOf(cell_, "librevenge:row");
  const std::int64_t column = WholeOf(cell_, "librevenge:column");
  if (sheets_->empty() || row < 0 || column < 0) return;
  text_ = texts_->Decoded(text_);
  CSheet& sheet = sheets_->back().cells;
  const auto r = static_cast<std::uint32_t>(row);
  const auto c = static_cast<std::uint32_t>(column);
  const std::string type =
      Has(cell_, "librevenge:value-type") ? cell_["librevenge:value-type"]->getStr().cstr() : "";
  if (type == "date" || type == "time") return PutDate(&sheet);
  if (type.empty() || type == "string") {
    if (!text_.empty()) sheet.Text(r, c, text_);
    return;
  }
  // A formula that gives a text or an error has no number.
  const double number = NumberOf(cell_, "librevenge:value", std::nan(""));
  if (!std::isfinite(number)) return text_.empty() ? sheet.Error(r, c) : sheet.Text(r, c, text_);
  if (type == "boolean") return sheet.Logical(r, c, number != 0);
  sheet.Number(r, c, number);
}

void CCellListener::PutDate(CSheet* sheet) const {
  const auto row = static_cast<std::uint32_t>(WholeOf(cell_, "librevenge:row"));
  const auto column = static_cast<std::uint32_t>(WholeOf(cell_, "librevenge:column"));
  const double time =
      (NumberOf(cell_, "librevenge:hours") * 60 + NumberOf(cell_, "librevenge:minutes")) * 60 +
      NumberOf(cell_, "librevenge:seconds");
  double serial = 0;
  if (!Has(cell_, "librevenge:year")) {
    return sheet->Number(row, column, time / kDaySeconds, DATE_KIND::SerialTime);
  }
  if (!SerialOfDate(WholeOf(cell_, "librevenge:year"), WholeOf(cell_, "librevenge:month"),
                    WholeOf(cell_, "librevenge:day"), &serial)) {
    return sheet->Error(row, column);
  }
  sheet->Number(row, column, serial + time / kDaySeconds,
                time == 0 ? DATE_KIND::SerialDate : DATE_KIND::SerialMoment);
}

class CWpsWorkbook final : public CWorkbook {
 public:
  explicit CWpsWorkbook(libwps::WPSCreator creator) : creator_(creator) {}

  bool Open(const std::string& name, const READ_OPTIONS& options) override;
  std::vector<std::string> Sheets() const override;
  bool Load(std::size_t sheet, CSheet* out) override;
  std::string GuessedEncoding() const override { return guessedEncoding_; }

 private:
  libwps::WPSCreator creator_;
  std::vector<WPS_SHEET> sheets_;
  std::string guessedEncoding_;
};

// The version word of the first record.
unsigned VersionOf(std::string_view first) {
  CByteReader in(first);
  const bool begins = in.U16() == 0 && in.U16() >= 2;
  const unsigned version = in.U16();
  return begins && in.Ok() ? version : 0;
}

// Quattro Pro for Windows uses the code page of Windows. The programs for DOS use the one of DOS;
// so does Lotus 1-2-3 from its release 3 on, whose character set holds that of code page 850.
const char* UsualEncoding(librevenge::RVNGInputStream* stream) {
  constexpr unsigned long kBytes = 8;
  unsigned long got = 0;
  stream->seek(0, librevenge::RVNG_SEEK_SET);
  const unsigned char* const bytes = stream->read(kBytes, got);
  const std::string first(reinterpret_cast<const char*>(bytes), bytes != nullptr ? got : 0);
  stream->seek(0, librevenge::RVNG_SEEK_SET);
  const bool windows = IsQuattro(first) && VersionOf(first) < 0x5120;
  return windows ? "CP1252" : "CP850";
}

bool CWpsWorkbook::Open(const std::string& name, const READ_OPTIONS& options) {
  librevenge::RVNGFileStream stream(name.c_str());
  libwps::WPSKind kind = libwps::WPS_TEXT;
  libwps::WPSCreator creator = libwps::WPS_MSWORKS;
  bool asksEncoding = false;
  const libwps::WPSConfidence confidence =
      libwps::WPSDocument::isFileFormatSupported(&stream, kind, creator, asksEncoding);
  if (confidence == libwps::WPS_CONFIDENCE_SUPPORTED_ENCRYPTION) {
    return Fail("the worksheet is encrypted; please save it without a password first");
  }
  // The first release of Lotus 1-2-3 shares its layout with another program.
  const bool right = creator == creator_ || creator == libwps::WPS_MSWORKS;
  if (confidence == libwps::WPS_CONFIDENCE_NONE || kind != libwps::WPS_SPREADSHEET || !right) {
    return Fail("the file is damaged, or a worksheet of a version that is not read");
  }
  CWpsTexts texts(options.encoding, UsualEncoding(&stream));
  CCellListener listener(&texts, &sheets_);
  const libwps::WPSResult result = libwps::WPSDocument::parse(&stream, &listener, "", kByteForByte);
  guessedEncoding_ = texts.GuessedEncoding();
  if (result != libwps::WPS_OK && sheets_.empty()) return Fail("the file is damaged");
  // Most of the 256 sheets of a file stand empty.
  const auto empty = [](const WPS_SHEET& sheet) { return sheet.cells.Cells().empty(); };
  sheets_.erase(std::remove_if(sheets_.begin(), sheets_.end(), empty), sheets_.end());
  return true;
}

std::vector<std::string> CWpsWorkbook::Sheets() const {
  std::vector<std::string> names;
  for (const WPS_SHEET& sheet : sheets_) names.push_back(sheet.name);
  return names;
}

bool CWpsWorkbook::Load(std::size_t sheet, CSheet* out) {
  *out = sheets_[sheet].cells;
  return true;
}

}  // namespace

bool IsLotus(std::string_view first) {
  const unsigned version = VersionOf(first);
  return (version >= 0x0404 && version <= 0x0406) ||
         (version >= 0x1000 && version <= 0x1005 && static_cast<unsigned char>(first[2]) > 2);
}

bool IsQuattro(std::string_view first) {
  if (first.substr(0, kCompoundMagic.size()) == kCompoundMagic) return true;
  const unsigned version = VersionOf(first);
  return version == 0x5120 || version == 0x5121 ||
         (version >= 0x1001 && version <= 0x1007 && static_cast<unsigned char>(first[2]) == 2);
}

std::unique_ptr<CReader> ReadLotus() {
  return std::make_unique<CChildReader>([] {
    return std::make_unique<CSheetReader>(0, std::make_unique<CWpsWorkbook>(libwps::WPS_LOTUS));
  });
}
std::unique_ptr<CReader> ReadQuattro() {
  return std::make_unique<CChildReader>([] {
    return std::make_unique<CSheetReader>(11,
                                          std::make_unique<CWpsWorkbook>(libwps::WPS_QUATTRO_PRO));
  });
}

}  // namespace statrn32
