#include "statrn32/SheetReader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "host/Numbers.h"
#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/Formats.h"

namespace statrn32 {
namespace {

constexpr std::size_t kMostColumns = 32767;
constexpr std::size_t kValuesAtOnce = std::size_t{1} << 15;

// "VAR007" for the column at position 6.
std::string DefaultName(std::size_t position) {
  const std::string number = std::to_string(position + 1);
  return "VAR" + std::string(number.size() < 3 ? 3 - number.size() : 0, '0') + number;
}

bool ReadFirstBytes(const std::string& name, std::string* first) {
  CInputFile file;
  first->resize(kFirstBytes);
  const std::int64_t got = file.Open(name) ? file.Read(first->data(), kFirstBytes) : -1;
  first->resize(static_cast<std::size_t>(std::max<std::int64_t>(0, got)));
  return got >= 0;
}

}  // namespace

bool CSheetReader::Open(const std::string& name) {
  name_ = name;
  std::string first;
  if (!ReadFirstBytes(name, &first)) return FailFile(std::strerror(errno));
  const std::string why = WhyNotRecognised(code_, first);
  if (!why.empty()) return FailFile(why);
  if (!workbook_->Open(name, Options())) return FailFile(workbook_->Error());
  if (workbook_->Sheets().empty()) return FailFile("there is no sheet or table in this file");
  return true;
}

std::vector<std::string> CSheetReader::Tables() const {
  return workbook_->Sheets();
}

double CSheetReader::Progress() const {
  if (sheet_.Cells().empty()) return workbook_->Progress();
  return static_cast<double>(next_) / static_cast<double>(sheet_.Cells().size());
}

DATE_KIND CSheetReader::DateKindOf(std::int32_t display) const {
  switch (display) {
    case ST_DISPLAY_DATE:
      return DATE_KIND::SerialDate;
    case ST_DISPLAY_DATETIME:
      return DATE_KIND::SerialMoment;
    case ST_DISPLAY_TIME:
      return DATE_KIND::SerialTime;
    default:
      return DATE_KIND::None;
  }
}

bool CSheetReader::LoadSheet() {
  sheet_ = {};
  if (!workbook_->Load(sheetIndex_, &sheet_)) return FailFile(workbook_->Error());
  sheet_.Arrange();
  return true;
}

// The sheet asked for; else the preferred one or the first behind it that holds anything.
bool CSheetReader::LoadFirstWithCells() {
  const std::vector<std::string> sheets = workbook_->Sheets();
  if (!Options().table.empty()) {
    const auto found = std::find(sheets.begin(), sheets.end(), Options().table);
    if (found == sheets.end()) return FailFile("there is no \"" + Options().table + "\" in it");
    sheetIndex_ = static_cast<std::size_t>(found - sheets.begin());
    return LoadSheet();
  }
  for (sheetIndex_ = workbook_->Preferred(); sheetIndex_ < sheets.size(); ++sheetIndex_) {
    if (!LoadSheet()) return false;
    if (!sheet_.Cells().empty()) return true;
  }
  sheetIndex_ = 0;
  return true;
}

bool CSheetReader::ReadDictionary(DICTIONARY* out) {
  if (!LoadFirstWithCells()) return false;
  if (sheet_.Cells().empty()) return FailFile("there is nothing in the sheet");
  FindNames();
  CountCells();
  if (columns_.size() > kMostColumns) {
    return FailFile("the sheet has " + std::to_string(columns_.size()) + " columns; at most " +
                    std::to_string(kMostColumns) + " are read");
  }
  ReadNames();
  for (COLUMN& column : columns_) out->variables.push_back(VariableOf(&column));
  const bool namesAsked = Options().nameRow >= 0;
  CountRows();
  out->cases = rows_ + (keepsBlanks_ ? blanks_ : 0) + (namesFound_ && namesAsked ? 1 : 0);
  next_ = firstData_;
  return true;
}

void CSheetReader::FindNames() {
  const auto& cells = sheet_.Cells();
  std::size_t end = 0;
  bool texts = true;
  for (; end < cells.size() && cells[end].row == cells[0].row; ++end) {
    texts = texts && cells[end].kind == SHEET_KIND::Text;
  }
  namesFound_ = texts;
  firstData_ = namesFound_ ? end : 0;
}

std::size_t CSheetReader::ColumnAt(std::uint32_t place) const {
  const auto found =
      std::lower_bound(columns_.begin(), columns_.end(), place,
                       [](const COLUMN& c, std::uint32_t wanted) { return c.place < wanted; });
  return static_cast<std::size_t>(found - columns_.begin());
}

void CSheetReader::CountCells() {
  const auto& cells = sheet_.Cells();
  std::vector<std::uint32_t> places;
  for (const SHEET_CELL& cell : cells) {
    if (cell.column >= places.size()) places.resize(cell.column + std::size_t{1});
    places[cell.column] = 1;
  }
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (places[i] == 0) continue;
    columns_.emplace_back().place = static_cast<std::uint32_t>(i);
    places[i] = static_cast<std::uint32_t>(columns_.size() - 1);
  }
  for (std::size_t i = firstData_; i < cells.size(); ++i) {
    const SHEET_CELL& cell = cells[i];
    COLUMN& column = columns_[places[cell.column]];
    if (cell.kind == SHEET_KIND::Text) {
      ++column.texts;
      column.textBytes = std::max(column.textBytes, sheet_.TextOf(cell).size());
    } else if (cell.kind == SHEET_KIND::Error) {
      ++column.errors;
    } else {
      ++column.numbers;
      column.whole = column.whole && cell.value.number == std::trunc(cell.value.number);
      if (cell.kind == SHEET_KIND::Date) ++column.kinds[0];
      if (cell.kind == SHEET_KIND::Moment) ++column.kinds[1];
      if (cell.kind == SHEET_KIND::Time) ++column.kinds[2];
    }
  }
}

// From below the names to the last row that holds anything.
void CSheetReader::CountRows() {
  constexpr std::int64_t kMostBlankCells = 4'000'000;
  const auto& cells = sheet_.Cells();
  row_ = cells.front().row + (namesFound_ ? 1 : 0);
  rows_ = static_cast<std::int64_t>(sheet_.CountRows()) - (namesFound_ ? 1 : 0);
  blanks_ = std::int64_t{cells.back().row} + 1 - row_ - rows_;
  keepsBlanks_ = blanks_ <= kMostBlankCells / static_cast<std::int64_t>(columns_.size());
}

void CSheetReader::ReadNames() {
  for (std::size_t i = 0; i < firstData_; ++i) {
    const SHEET_CELL& cell = sheet_.Cells()[i];
    columns_[ColumnAt(cell.column)].name = Trimmed(TextForDisplay(sheet_.TextOf(cell)));
  }
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].name.empty()) columns_[i].name = DefaultName(i);
  }
}

VARIABLE CSheetReader::VariableOf(COLUMN* column) {
  constexpr int kNumberWidth = 12;
  constexpr int kDecimals = 4;
  constexpr std::size_t kLongestNumber = 24;
  VARIABLE variable;
  variable.name = column->name;
  variable.width = kNumberWidth;
  variable.decimals = column->whole ? 0 : kDecimals;
  const auto& kinds = column->kinds;
  const bool dates = kinds[0] + kinds[1] + kinds[2] == column->numbers && column->numbers > 0;
  if (column->texts > column->numbers) {
    column->type = ST_TYPE_STRING;
    const std::size_t least = column->numbers > 0 ? kLongestNumber : 1;
    variable.width = static_cast<int>(std::max(column->textBytes, least));
    variable.decimals = 0;
  } else if (dates && (kinds[2] == 0 || kinds[2] == column->numbers)) {
    column->type = ST_TYPE_DATE;
    variable.date = kinds[2] > 0   ? DATE_KIND::SerialTime
                    : kinds[1] > 0 ? DATE_KIND::SerialMoment
                                   : DATE_KIND::SerialDate;
  } else {
    column->type = ST_TYPE_NUMERIC;
  }
  variable.type = column->type;
  return variable;
}

const RECORD_BLOCK* CSheetReader::NextBlock() {
  if (columns_.empty()) return nullptr;
  CBlockFiller filler(&block_, columns_.size(),
                      std::max<std::size_t>(1, kValuesAtOnce / columns_.size()));
  while (next_ < sheet_.Cells().size() && !filler.Full()) FillRow(&filler);
  return block_.records > 0 ? &block_ : nullptr;
}

void CSheetReader::FillBlankRow(CBlockFiller* out) {
  for (const COLUMN& column : columns_) {
    column.type == ST_TYPE_STRING ? out->Text({}) : out->MissingNumber(ST_STATUS_MISSING);
  }
  out->EndRecord();
}

void CSheetReader::FillRow(CBlockFiller* out) {
  const auto& cells = sheet_.Cells();
  const std::uint32_t row = cells[next_].row;
  if (keepsBlanks_ && row_ < row) {
    ++row_;
    return FillBlankRow(out);
  }
  row_ = row + 1;
  for (const COLUMN& column : columns_) {
    const bool here =
        next_ < cells.size() && cells[next_].row == row && cells[next_].column == column.place;
    if (here) {
      FillCell(column, cells[next_++], out);
    } else if (column.type == ST_TYPE_STRING) {
      out->Text({});
    } else {
      out->MissingNumber(ST_STATUS_MISSING);
    }
  }
  out->EndRecord();
}

void CSheetReader::FillCell(const COLUMN& column, const SHEET_CELL& cell, CBlockFiller* out) {
  const bool text = cell.kind == SHEET_KIND::Text;
  if (column.type == ST_TYPE_STRING) {
    if (cell.kind == SHEET_KIND::Error) return out->Text({}, ST_STATUS_MISSING);
    if (!text) numberText_ = FormatShortest(cell.value.number);
    return out->Text(text ? sheet_.TextOf(cell) : std::string_view(numberText_));
  }
  if (text || cell.kind == SHEET_KIND::Error || !std::isfinite(cell.value.number)) {
    return out->MissingNumber(ST_STATUS_MISSING);
  }
  out->Number(cell.value.number);
}

std::vector<std::string> CSheetReader::Notes() const {
  std::vector<std::string> notes;
  const std::vector<std::string> sheets = workbook_->Sheets();
  if (sheets.size() > 1 && Options().table.empty() && sheetIndex_ < sheets.size()) {
    std::string names;
    for (std::size_t i = 0; i < sheets.size(); ++i) {
      if (i != sheetIndex_) names += (names.empty() ? "" : ", ") + sheets[i];
    }
    notes.push_back("Read was \"" + sheets[sheetIndex_] + "\"; the file also holds " + names + ".");
  }
  if (blanks_ > 0) {
    notes.push_back((keepsBlanks_ ? "Rows that hold nothing became records of missing values: "
                                  : "Rows that hold nothing were left out: ") +
                    std::to_string(blanks_) + ".");
  }
  for (const COLUMN& column : columns_) {
    if (column.errors > 0) {
      notes.push_back("Errors in cells of " + column.name +
                      " became missing values: " + std::to_string(column.errors) + ".");
    }
    if (column.type != ST_TYPE_STRING && column.texts > 0) {
      notes.push_back("Texts among the numbers of " + column.name +
                      " became missing values: " + std::to_string(column.texts) + ".");
    }
  }
  return notes;
}

}  // namespace statrn32
