#include <algorithm>
#include <charconv>
#include <cmath>

#include "statrn32/OfficeFiles.h"
#include "statrn32/SheetReader.h"
#include "statrn32/XmlReader.h"
#include "statrn32/ZipFile.h"

namespace statrn32 {
namespace {

using NODE = CXmlReader::NODE;

constexpr std::uint32_t kMostRows = 1 << 24;
constexpr std::uint32_t kMostColumns = 1 << 20;

// How often a row or cell is repeated; 1 when it is not said.
std::uint32_t RepeatOf(const std::string& text, std::uint32_t most) {
  std::uint32_t count = 1;
  std::from_chars(text.data(), text.data() + text.size(), count);
  return std::clamp<std::uint32_t>(count, 1, most);
}

// "PT14H30M05.5S" as a fraction of a day.
bool ParseDuration(std::string_view text, double* days) {
  const bool negative = !text.empty() && text.front() == '-';
  if (negative) text.remove_prefix(1);
  if (text.substr(0, 2) != "PT") return false;
  double seconds = 0;
  for (const char* at = text.data() + 2; at < text.data() + text.size();) {
    double number = 0;
    const auto [stop, failed] = std::from_chars(at, text.data() + text.size(), number);
    if (failed != std::errc() || stop == text.data() + text.size()) return false;
    seconds += number * (*stop == 'H' ? 3600 : *stop == 'M' ? 60 : 1);
    at = stop + 1;
  }
  *days = (negative ? -seconds : seconds) / 86400;
  return std::isfinite(*days);
}

struct ODS_CELL {
  std::string type;
  std::string value;
  std::string text;
  std::uint32_t repeat = 1;
};

class COdsWorkbook final : public CWorkbook {
 public:
  bool Open(const std::string& name, const READ_OPTIONS& options) override;
  std::vector<std::string> Sheets() const override { return sheets_; }
  bool Load(std::size_t sheet, CSheet* out) override;

 private:
  bool IsEncrypted();
  void BeginNode(const CXmlReader& xml);
  bool EndNode(const CXmlReader& xml, CSheet* out);
  bool PutRow(CSheet* out);
  static void PutCell(const ODS_CELL& cell, std::uint32_t row, std::uint32_t column, CSheet* out);

  CZipFile package_;
  std::vector<std::string> sheets_;

  // Of the walk.
  int depth_ = 0;  // tables within tables
  std::size_t sheet_ = 0;
  std::size_t wanted_ = 0;
  std::uint32_t row_ = 0;
  std::uint32_t rowRepeat_ = 1;
  std::vector<ODS_CELL> cells_;
  bool inCell_ = false;
  int inNote_ = 0;
  bool inText_ = false;
  std::uint64_t budget_ = 0;  // cells that repetitions may still make
};

bool COdsWorkbook::Open(const std::string& name, const READ_OPTIONS& /*options*/) {
  std::string error;
  if (!package_.Open(name, &error)) return Fail(error);
  if (IsEncrypted()) {
    return Fail("this is a spreadsheet protected by a password; please save it without one first");
  }
  if (!package_.Has("content.xml")) return Fail("this package holds no spreadsheet");
  const bool listed = package_.ReadPart("content.xml", [&](const CZipFile::READ& read) {
    CXmlReader xml(read);
    for (int depth = 0;;) {
      const NODE node = xml.Next();
      if (node == NODE::Finished) return true;
      if (node == NODE::Damaged) return false;
      if (node == NODE::Text || xml.Name() != "table") continue;
      if (node == NODE::Begin && depth == 0) sheets_.push_back(xml.Attribute("name"));
      depth += node == NODE::Begin ? 1 : -1;
    }
  });
  return listed || Fail("the content is damaged");
}

// Its list of parts tells of a part how it was encrypted; later versions put all parts into one.
bool COdsWorkbook::IsEncrypted() {
  bool encrypted = package_.Has("encrypted-package");
  package_.ReadPart("META-INF/manifest.xml", [&](const CZipFile::READ& read) {
    CXmlReader xml(read);
    for (NODE node = xml.Next(); node != NODE::Finished && node != NODE::Damaged;
         node = xml.Next()) {
      encrypted |= node == NODE::Begin && xml.Name() == "encryption-data";
    }
    return true;
  });
  return encrypted;
}

bool COdsWorkbook::Load(std::size_t sheet, CSheet* out) {
  constexpr std::uint64_t kRepeatedCells = 4'000'000;
  wanted_ = sheet;
  depth_ = inNote_ = 0;
  sheet_ = 0;
  budget_ = kRepeatedCells;
  bool tooMany = false;
  const bool read = package_.ReadPart("content.xml", [&](const CZipFile::READ& part) {
    CXmlReader xml(part);
    for (;;) {
      const NODE node = xml.Next();
      if (node == NODE::Finished) return true;
      if (node == NODE::Damaged) return false;
      if (node == NODE::Begin) BeginNode(xml);
      if (node == NODE::End && !EndNode(xml, out)) {
        tooMany = true;
        return false;
      }
      if (node == NODE::Text && inCell_ && inText_ && inNote_ == 0) {
        cells_.back().text += xml.Text();
      }
    }
  });
  if (tooMany) return Fail("the sheet repeats its cells too often");
  return read || Fail("the sheet \"" + sheets_[sheet] + "\" is damaged");
}

void COdsWorkbook::BeginNode(const CXmlReader& xml) {
  const std::string_view name = xml.Name();
  if (name == "table") {
    if (++depth_ == 1) row_ = 0;
  } else if (depth_ != 1 || sheet_ != wanted_) {
    return;
  } else if (name == "table-row") {
    rowRepeat_ = RepeatOf(xml.Attribute("number-rows-repeated"), kMostRows);
    cells_.clear();
  } else if (name == "table-cell" || name == "covered-table-cell") {
    ODS_CELL cell;
    cell.repeat = RepeatOf(xml.Attribute("number-columns-repeated"), kMostColumns);
    cell.type = xml.Attribute("value-type");
    const bool date = cell.type == "date";
    cell.value = xml.Attribute(date                     ? "date-value"
                               : cell.type == "time"    ? "time-value"
                               : cell.type == "boolean" ? "boolean-value"
                               : cell.type == "string"  ? "string-value"
                                                        : "value");
    cells_.push_back(std::move(cell));
    inCell_ = name == "table-cell";
  } else if (name == "annotation") {
    ++inNote_;
  } else if (name == "p" && inCell_ && inNote_ == 0) {
    inText_ = true;
    if (!cells_.back().text.empty()) cells_.back().text += ' ';
  } else if ((name == "s" || name == "tab" || name == "line-break") && inText_ && inNote_ == 0) {
    constexpr std::uint32_t kMostBlanks = 1024;
    cells_.back().text.append(name == "s" ? RepeatOf(xml.Attribute("c"), kMostBlanks) : 1, ' ');
  }
}

bool COdsWorkbook::EndNode(const CXmlReader& xml, CSheet* out) {
  const std::string_view name = xml.Name();
  if (name == "table") {
    if (--depth_ == 0) ++sheet_;
    return true;
  }
  if (depth_ != 1 || sheet_ != wanted_) return true;
  if (name == "annotation") --inNote_;
  if (name == "p") inText_ = false;
  if (name == "table-cell") inCell_ = false;
  return name != "table-row" || PutRow(out);
}

bool COdsWorkbook::PutRow(CSheet* out) {
  const bool filled = std::any_of(cells_.begin(), cells_.end(), [](const ODS_CELL& cell) {
    return !cell.type.empty() || !cell.text.empty();
  });
  for (std::uint32_t r = 0; filled && r < rowRepeat_; ++r) {
    std::uint32_t column = 0;
    for (const ODS_CELL& cell : cells_) {
      const bool empty = cell.type.empty() && cell.text.empty();
      for (std::uint32_t c = 0; !empty && c < cell.repeat; ++c) {
        if ((r > 0 || c > 0) && budget_-- == 0) return false;
        PutCell(cell, row_ + r, column + c, out);
      }
      column = std::min(kMostColumns, column + cell.repeat);
    }
  }
  row_ = std::min(kMostRows, row_ + rowRepeat_);
  return true;
}

void COdsWorkbook::PutCell(const ODS_CELL& cell, std::uint32_t row, std::uint32_t column,
                           CSheet* out) {
  double number = 0;
  const std::string& value = cell.value;
  if (cell.type == "float" || cell.type == "percentage" || cell.type == "currency") {
    const auto [stop, failed] = std::from_chars(value.data(), value.data() + value.size(), number);
    const bool whole = failed == std::errc() && stop == value.data() + value.size();
    whole&& std::isfinite(number) ? out->Number(row, column, number) : out->Error(row, column);
  } else if (cell.type == "boolean") {
    out->Logical(row, column, value == "true");
  } else if (cell.type == "date") {
    const ISO_MOMENT moment = ParseIsoMoment(value);
    moment.kind != DATE_KIND::None ? out->Number(row, column, moment.serial, moment.kind)
                                   : out->Text(row, column, cell.text);
  } else if (cell.type == "time") {
    ParseDuration(value, &number) ? out->Number(row, column, number, DATE_KIND::SerialTime)
                                  : out->Text(row, column, cell.text);
  } else {
    out->Text(row, column, value.empty() ? cell.text : value);
  }
}

}  // namespace

std::unique_ptr<CReader> ReadOds() {
  return std::make_unique<CSheetReader>(901, std::make_unique<COdsWorkbook>());
}

}  // namespace statrn32
