// Data frames, lists and matrices of S as tables.
#include <algorithm>
#include <cmath>

#include <boost/algorithm/string/join.hpp>

#include "host/statrn32.h"
#include "statrn32/DumpFiles.h"
#include "statrn32/FileReader.h"
#include "statrn32/TableChoice.h"

namespace statrn32 {
namespace {

// One variable: all elements of a node, or a column of a matrix.
struct COLUMN {
  std::string name;
  const DUMP_NODE* data = nullptr;
  std::size_t first = 0;
  const DUMP_NODE* levels = nullptr;  // of a factor
  DATE_KIND date = DATE_KIND::None;
};

class CDumpReader final : public CFileReader {
 public:
  CDumpReader() : CFileReader(17) {}

  std::vector<std::string> Tables() const override;
  std::vector<std::string> Notes() const override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }

 protected:
  bool LookInside() override;
  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;

 private:
  bool Choose();
  void AddColumns(const DUMP_NODE& node, const std::string& name);
  void AddStructure(const DUMP_NODE& node, const std::string& name);
  void AddMatrix(const DUMP_NODE& data, const DUMP_NODE& dims, const DUMP_NODE* names);
  void AddColumn(COLUMN column, std::size_t size);
  VARIABLE VariableOf(const COLUMN& column, DICTIONARY* out) const;
  bool IsOfClass(const DUMP_NODE& node, std::string_view name) const;

  CTextDecoder decoder_;
  DUMP_OBJECTS dump_;
  std::vector<COLUMN> columns_;
  std::vector<std::string> leftOut_;
  std::size_t chosen_ = 0;  // of the objects
  std::size_t rows_ = 0;
  std::size_t next_ = 0;
};

bool CDumpReader::LookInside() {
  constexpr DATE_FAMILY kDays = {0, DATE_KIND::DayDate, DATE_KIND::Seconds, DATE_KIND::None};
  std::string error;
  decoder_.SetEncoding(Options().encoding.c_str());
  SetDates(kDays);
  return ParseDump(&Input(), &decoder_, &dump_, &error) || FailFile(error);
}

std::vector<std::string> CDumpReader::Tables() const {
  std::vector<std::string> names;
  for (const DUMP_NODE& object : dump_.objects) names.push_back(object.name);
  return names;
}

// The one asked for, else the first with several parts, else the first.
bool CDumpReader::Choose() {
  if (dump_.objects.empty()) return FailFile("there is no object in it");
  chosen_ = ChooseTable(Tables(), Options().table);
  if (chosen_ == dump_.objects.size()) {
    return FailFile("there is no object \"" + Options().table +
                    "\"; there are: " + boost::algorithm::join(Tables(), ", "));
  }
  for (std::size_t i = 0; Options().table.empty() && i < dump_.objects.size(); ++i) {
    if (dump_.objects[i].kind != DUMP_NODE::Parts) continue;
    chosen_ = i;
    break;
  }
  return true;
}

bool CDumpReader::ReadHeader(DICTIONARY* out) {
  if (!Choose()) return false;
  const DUMP_NODE& object = dump_.objects[chosen_];
  AddColumns(object, object.name);
  if (columns_.empty()) return FailFile("the object " + object.name + " holds no values");
  for (const COLUMN& column : columns_) out->variables.push_back(VariableOf(column, out));
  out->cases = static_cast<std::int64_t>(rows_);
  return true;
}

void CDumpReader::AddColumns(const DUMP_NODE& node, const std::string& name) {
  if (node.structure) return AddStructure(node, name);
  if (node.kind != DUMP_NODE::Parts) return AddColumn({name, &node}, node.Size());
  for (const DUMP_NODE& part : node.parts) AddColumns(part, part.name);
}

bool CDumpReader::IsOfClass(const DUMP_NODE& node, std::string_view name) const {
  const DUMP_NODE* const classes = node.Find("class");
  for (std::size_t i = 0; classes != nullptr && i < classes->Size(); ++i) {
    if (dump_.TextOf(*classes, i) == name) return true;
  }
  return false;
}

void CDumpReader::AddStructure(const DUMP_NODE& node, const std::string& name) {
  const DUMP_NODE* const data = node.Find(".Data");
  if (data == nullptr) return;
  const DUMP_NODE* const dims = node.Find(".Dim");
  if (dims != nullptr && dims->numbers.size() == 2 && data->kind != DUMP_NODE::Parts) {
    return AddMatrix(*data, *dims, node.Find(".Dimnames"));
  }
  if (data->kind != DUMP_NODE::Parts) {
    COLUMN column{name, data};
    column.levels = node.Find(".Label");
    if (column.levels == nullptr) column.levels = node.Find("levels");
    if (IsOfClass(node, "Date")) column.date = DATE_KIND::DayDate;
    if (IsOfClass(node, "POSIXct")) column.date = DATE_KIND::Seconds;
    return AddColumn(std::move(column), data->Size());
  }
  const DUMP_NODE* names = node.Find(".Names");
  if (names == nullptr) names = node.Find("names");
  for (std::size_t i = 0; i < data->parts.size(); ++i) {
    const bool named = names != nullptr && !dump_.TextOf(*names, i).empty();
    AddColumns(data->parts[i], named ? std::string(dump_.TextOf(*names, i)) : data->parts[i].name);
  }
}

void CDumpReader::AddMatrix(const DUMP_NODE& data, const DUMP_NODE& dims, const DUMP_NODE* names) {
  const double rows = dims.numbers[0];
  const double columns = dims.numbers[1];
  const auto values = static_cast<double>(data.Size());
  if (!(rows >= 1 && columns >= 1) || rows * columns != values || rows != std::trunc(rows)) {
    leftOut_.emplace_back("a matrix with other dimensions than values");
    return;
  }
  const bool named = names != nullptr && names->parts.size() == 2;
  for (std::size_t i = 0; i < static_cast<std::size_t>(columns); ++i) {
    const std::string_view name = named ? dump_.TextOf(names->parts[1], i) : std::string_view();
    COLUMN column{name.empty() ? "V" + std::to_string(i + 1) : std::string(name), &data};
    column.first = i * static_cast<std::size_t>(rows);
    AddColumn(std::move(column), static_cast<std::size_t>(rows));
  }
}

// The first column says how many records there are.
void CDumpReader::AddColumn(COLUMN column, std::size_t size) {
  if (columns_.empty()) rows_ = size;
  if (size != rows_) {
    leftOut_.push_back(column.name);
    return;
  }
  if (column.name.empty()) column.name = "V" + std::to_string(columns_.size() + 1);
  columns_.push_back(std::move(column));
}

VARIABLE CDumpReader::VariableOf(const COLUMN& column, DICTIONARY* out) const {
  constexpr int kWidth = 12;
  VARIABLE variable;
  variable.name = column.name;
  variable.date = column.date;
  variable.width = kWidth;
  if (column.data->kind == DUMP_NODE::Texts) {
    variable.type = ST_TYPE_STRING;
    std::size_t bytes = 1;
    for (std::size_t i = 0; i < rows_; ++i) {
      bytes = std::max(bytes, dump_.TextOf(*column.data, column.first + i).size());
    }
    variable.width = static_cast<int>(bytes);
    return variable;
  }
  variable.type = column.date == DATE_KIND::None ? ST_TYPE_NUMERIC : ST_TYPE_DATE;
  variable.decimals = column.data->whole ? 0 : 4;
  if (column.levels == nullptr) return variable;
  variable.labelSet = static_cast<int>(out->labelSets.size());
  LABEL_SET& set = out->labelSets.emplace_back();
  for (std::size_t i = 0; i < column.levels->Size(); ++i) {
    VALUE_LABEL& label = set.emplace_back();
    label.number = static_cast<double>(i + 1);
    label.label = dump_.TextOf(*column.levels, i);
  }
  return variable;
}

void CDumpReader::FillBlock(CBlockFiller* out) {
  for (; next_ < rows_ && !out->Full(); ++next_) {
    for (const COLUMN& column : columns_) {
      const std::size_t at = column.first + next_;
      if (column.data->kind == DUMP_NODE::Texts) {
        const int status = column.data->texts[at] == 0 ? ST_STATUS_MISSING : ST_STATUS_PRESENT;
        out->Text(dump_.TextOf(*column.data, at), static_cast<std::uint8_t>(status));
      } else if (std::isfinite(column.data->numbers[at])) {
        out->Number(column.data->numbers[at]);
      } else {
        out->MissingNumber(ST_STATUS_MISSING);
      }
    }
    out->EndRecord();
  }
}

std::vector<std::string> CDumpReader::Notes() const {
  std::vector<std::string> notes;
  if (dump_.objects.size() > 1 && Options().table.empty()) {
    notes.push_back(NoteOtherTables(Tables(), chosen_));
  }
  if (!leftOut_.empty()) {
    notes.push_back(
        "Parts of another length were left out: " + boost::algorithm::join(leftOut_, ", ") + ".");
  }
  return notes;
}

}  // namespace

std::unique_ptr<CReader> ReadDump() {
  return std::make_unique<CDumpReader>();
}

}  // namespace statrn32
