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

struct WPS_SHEET {
  std::string name;
  CSheet cells;
};

// Gathers the cells of all sheets.
class CCellListener final : public CQuietListener {
 public:
  explicit CCellListener(std::vector<WPS_SHEET>* sheets) : sheets_(sheets) {}

  // Was there a text that is not ASCII?
  bool HasForeignLetters() const { return foreign_; }

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
    for (const char* c = text; *c != '\0'; ++c) foreign_ |= static_cast<unsigned char>(*c) >= 0x80;
  }
  void PutDate(CSheet* sheet) const;

  std::vector<WPS_SHEET>* sheets_;
  LIST cell_;
  std::string text_;
  bool inCell_ = false;
  int aside_ = 0;
  bool foreign_ = false;
};

void CCellListener::openSheet(const LIST& list) {
  WPS_SHEET& sheet = sheets_->emplace_back();
  if (Has(list, "librevenge:sheet-name")) {
    sheet.name = list["librevenge:sheet-name"]->getStr().cstr();
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
  bool EncodingGuessed() const override { return guessed_; }

 private:
  libwps::WPSCreator creator_;
  std::vector<WPS_SHEET> sheets_;
  bool guessed_ = false;
};

// The library has a name of its own for this one; what it does not know it takes for code page 437.
std::string NameForLibrary(const std::string& encoding) {
  return encoding == "MACINTOSH" ? "MacRoman" : encoding;
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
  CCellListener listener(&sheets_);
  const libwps::WPSResult result =
      libwps::WPSDocument::parse(&stream, &listener, "", NameForLibrary(options.encoding).c_str());
  guessed_ = asksEncoding && options.encoding.empty() && listener.HasForeignLetters();
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

// The version word of the first record.
unsigned VersionOf(std::string_view first) {
  CByteReader in(first);
  const bool begins = in.U16() == 0 && in.U16() >= 2;
  const unsigned version = in.U16();
  return begins && in.Ok() ? version : 0;
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
