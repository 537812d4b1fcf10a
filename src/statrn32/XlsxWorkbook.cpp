#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>

#include "statrn32/ExcelFiles.h"
#include "statrn32/OfficeFiles.h"
#include "statrn32/SheetReader.h"
#include "statrn32/XmlReader.h"
#include "statrn32/ZipFile.h"

namespace statrn32 {
namespace {

using NODE = CXmlReader::NODE;

bool ParseWhole(std::string_view text, std::uint32_t* number) {
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return failed == std::errc() && stop == text.data() + text.size();
}

bool ParseReal(std::string_view text, double* number) {
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return failed == std::errc() && stop == text.data() + text.size() && std::isfinite(*number);
}

// "BC17" is row 16, column 54.
bool ParsePlace(std::string_view text, std::uint32_t* row, std::uint32_t* column) {
  constexpr std::uint32_t kMostColumns = 1 << 20;
  std::uint32_t letters = 0;
  std::size_t at = 0;
  for (; at < text.size() && text[at] >= 'A' && text[at] <= 'Z' && letters < kMostColumns; ++at) {
    letters = letters * 26 + static_cast<std::uint32_t>(text[at] - 'A' + 1);
  }
  if (letters == 0 || !ParseWhole(text.substr(at), row) || *row == 0) return false;
  *column = letters - 1;
  --*row;
  return true;
}

class CXlsxWorkbook final : public CWorkbook {
 public:
  bool Open(const std::string& name, const READ_OPTIONS& options) override;
  std::vector<std::string> Sheets() const override;
  bool Load(std::size_t sheet, CSheet* out) override;

 private:
  struct PLACE {
    std::string name;
    std::string part;
  };
  // A cell as it is being read.
  struct CELL_TEXT {
    std::uint32_t row = 0;
    std::uint32_t column = 0;
    std::string type;
    std::uint32_t style = 0;
    std::string value;
  };

  // Calls `node` for every node of a part; false when the part is damaged.
  template <typename USE>
  bool EachNode(const std::string& part, const USE& use);
  bool ReadPlaces();
  void ReadStyles();
  bool ReadSharedTexts();
  void PutCell(const CELL_TEXT& cell, CSheet* out);
  DATE_KIND KindOf(std::uint32_t style) const;

  CZipFile package_;
  bool from1904_ = false;
  std::vector<PLACE> places_;
  std::vector<DATE_KIND> styles_;
  std::string texts_ = std::string(1, '\0');
  std::vector<std::size_t> textPlaces_;
  std::vector<std::uint64_t> stored_;
};

template <typename USE>
bool CXlsxWorkbook::EachNode(const std::string& part, const USE& use) {
  return package_.ReadPart(part, [&](const CZipFile::READ& read) {
    CXmlReader xml(read);
    for (;;) {
      const NODE node = xml.Next();
      if (node == NODE::Finished) return true;
      if (node == NODE::Damaged) return false;
      use(xml, node);
    }
  });
}

bool CXlsxWorkbook::Open(const std::string& name, const READ_OPTIONS& /*options*/) {
  std::string error;
  if (!package_.Open(name, &error)) return Fail(error);
  if (!package_.Has("xl/workbook.xml")) {
    return Fail(package_.Has("xl/workbook.bin")
                    ? "this is a binary workbook (.xlsb); please save it as .xlsx first"
                    : "this package holds no workbook");
  }
  if (!ReadPlaces()) return Fail("the list of sheets is damaged");
  ReadStyles();
  return ReadSharedTexts() || Fail("the table of texts is damaged");
}

bool CXlsxWorkbook::ReadPlaces() {
  std::map<std::string, std::string> targets;
  EachNode("xl/_rels/workbook.xml.rels", [&](const CXmlReader& xml, NODE node) {
    if (node != NODE::Begin || xml.Name() != "Relationship") return;
    const std::string target = xml.Attribute("Target");
    targets[xml.Attribute("Id")] =
        !target.empty() && target[0] == '/' ? target.substr(1) : "xl/" + target;
  });
  return EachNode("xl/workbook.xml", [&](const CXmlReader& xml, NODE node) {
    if (node != NODE::Begin) return;
    if (xml.Name() == "workbookPr") {
      const std::string date = xml.Attribute("date1904");
      from1904_ = date == "1" || date == "true";
    } else if (xml.Name() == "sheet") {
      const std::string part = targets[xml.Attribute("id")];
      if (package_.Has(part)) places_.push_back({xml.Attribute("name"), part});
    }
  });
}

void CXlsxWorkbook::ReadStyles() {
  std::map<std::uint32_t, DATE_KIND> formats;
  bool cellFormats = false;
  EachNode("xl/styles.xml", [&](const CXmlReader& xml, NODE node) {
    std::uint32_t number = 0;
    if (xml.Name() == "cellXfs") cellFormats = node == NODE::Begin;
    if (node != NODE::Begin) return;
    if (xml.Name() == "numFmt") {
      if (ParseWhole(xml.Attribute("numFmtId"), &number)) {
        formats[number] = SheetDateKind(xml.Attribute("formatCode"));
      }
    } else if (xml.Name() == "xf" && cellFormats) {
      ParseWhole(xml.Attribute("numFmtId"), &number);
      const auto own = formats.find(number);
      styles_.push_back(own != formats.end() ? own->second : BuiltInDateKind(number));
    }
  });
}

bool CXlsxWorkbook::ReadSharedTexts() {
  if (!package_.Has("xl/sharedStrings.xml")) return true;
  bool inText = false;
  bool phonetic = false;
  return EachNode("xl/sharedStrings.xml", [&](const CXmlReader& xml, NODE node) {
    if (node == NODE::Text) {
      if (inText && !phonetic) texts_ += xml.Text();
      return;
    }
    const bool begins = node == NODE::Begin;
    if (xml.Name() == "t") inText = begins;
    if (xml.Name() == "rPh") phonetic = begins;
    if (xml.Name() != "si") return;
    if (begins) {
      textPlaces_.push_back(texts_.size());
    } else {
      texts_ += '\0';
    }
  });
}

std::vector<std::string> CXlsxWorkbook::Sheets() const {
  std::vector<std::string> names;
  for (const PLACE& place : places_) names.push_back(place.name);
  return names;
}

DATE_KIND CXlsxWorkbook::KindOf(std::uint32_t style) const {
  return style < styles_.size() ? styles_[style] : DATE_KIND::None;
}

bool CXlsxWorkbook::Load(std::size_t sheet, CSheet* out) {
  out->epochDay = from1904_ ? kSerial1904EpochDay : kSerialEpochDay;
  stored_.assign(textPlaces_.size(), 0);
  CELL_TEXT cell;
  std::uint32_t nextRow = 0;
  std::uint32_t nextColumn = 0;
  bool inValue = false;
  const auto begin = [&](const CXmlReader& xml) {
    if (xml.Name() == "row") {
      std::uint32_t row = 0;
      if (ParseWhole(xml.Attribute("r"), &row) && row > 0) nextRow = row - 1;
      nextColumn = 0;
    } else if (xml.Name() == "c") {
      cell = {nextRow, nextColumn, xml.Attribute("t"), 0, {}};
      ParsePlace(xml.Attribute("r"), &cell.row, &cell.column);
      ParseWhole(xml.Attribute("s"), &cell.style);
      nextColumn = cell.column + 1;
    } else if (xml.Name() == "v" || xml.Name() == "t") {
      inValue = true;
    }
  };
  const auto end = [&](const CXmlReader& xml) {
    if (xml.Name() == "row") ++nextRow;
    if (xml.Name() == "c") PutCell(cell, out);
    if (xml.Name() == "v" || xml.Name() == "t") inValue = false;
  };
  return EachNode(places_[sheet].part,
                  [&](const CXmlReader& xml, NODE node) {
                    if (node == NODE::Begin) begin(xml);
                    if (node == NODE::End) end(xml);
                    if (node == NODE::Text && inValue) cell.value += xml.Text();
                  }) ||
         Fail("the sheet \"" + places_[sheet].name + "\" is damaged");
}

void CXlsxWorkbook::PutCell(const CELL_TEXT& cell, CSheet* out) {
  double number = 0;
  std::uint32_t index = 0;
  if (cell.value.empty()) return;
  if (cell.type == "s") {
    if (!ParseWhole(cell.value, &index) || index >= stored_.size()) return;
    if (stored_[index] == 0) stored_[index] = out->AddText(texts_.data() + textPlaces_[index]);
    out->StoredText(cell.row, cell.column, stored_[index]);
  } else if (cell.type == "str" || cell.type == "inlineStr") {
    out->Text(cell.row, cell.column, cell.value);
  } else if (cell.type == "b") {
    out->Logical(cell.row, cell.column, cell.value == "1" || cell.value == "true");
  } else if (cell.type == "e") {
    out->Error(cell.row, cell.column);
  } else if (cell.type == "d") {
    const ISO_MOMENT moment = ParseIsoMoment(cell.value);
    const double shift = static_cast<double>(kSerialEpochDay - out->epochDay);
    const bool time = moment.kind == DATE_KIND::SerialTime;
    if (moment.kind == DATE_KIND::None) return out->Text(cell.row, cell.column, cell.value);
    out->Number(cell.row, cell.column, moment.serial + (time ? 0 : shift), moment.kind);
  } else if (ParseReal(cell.value, &number)) {
    out->Number(cell.row, cell.column, number, KindOf(cell.style));
  }
}

}  // namespace

std::unique_ptr<CReader> ReadXlsx() {
  return std::make_unique<CSheetReader>(900, std::make_unique<CXlsxWorkbook>());
}

}  // namespace statrn32
