#include <cmath>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/AccessFiles.h"
#include "statrn32/AccessPages.h"
#include "statrn32/AccessTable.h"
#include "statrn32/AccessValues.h"
#include "statrn32/ByteReader.h"
#include "statrn32/FileReader.h"
#include "statrn32/TableChoice.h"
#include "statrn32/Utf16.h"

namespace statrn32 {
namespace {

constexpr std::uint32_t kCatalogue = 2;  // the page that describes the list of tables
constexpr std::size_t kMostTables = 32768;

class CAccessReader final : public CFileReader {
 public:
  CAccessReader() : CFileReader(23) {
    SetDates({kSerialEpochDay, DATE_KIND::DayDate, DATE_KIND::DayMoment, DATE_KIND::SerialTime});
  }

  bool LookInside() override;
  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::vector<std::string> Tables() const override { return names_; }
  std::vector<std::string> Notes() const override;
  double Progress() const override;

 private:
  // The data pages of a table, row by row.
  struct SCAN {
    ACCESS_TABLE table;
    std::vector<std::uint32_t> owned;  // pages
    std::size_t nextPage = 0;          // of `owned`
    std::string page;
    std::size_t nextRow = 0;
    std::size_t rows = 0;  // of the page
  };
  bool OpenTable(std::uint32_t page, SCAN* scan);
  bool NextRow(SCAN* scan, CAccessRow* row);
  bool SplitRow(const SCAN& scan, std::size_t number, CAccessRow* row);
  bool ListTables();
  VARIABLE VariableOf(const ACCESS_COLUMN& column) const;
  void FillField(const ACCESS_COLUMN& column, const CAccessRow& row, CBlockFiller* out);
  void FillText(const ACCESS_COLUMN& column, std::string_view bytes, CBlockFiller* out);
  bool ReadMemo(std::string_view field, std::string* out);
  void AppendText(std::string_view bytes, std::string* utf8);

  CAccessPages pages_;
  CTextDecoder decoder_;
  std::vector<std::string> names_;
  std::vector<std::uint32_t> places_;  // the pages that describe the tables
  std::size_t chosen_ = 0;
  SCAN scan_;
  CAccessRow row_;
  std::vector<ACCESS_COLUMN> columns_;  // that are read
  std::string leftOut_;                 // columns that are not
  std::int64_t damaged_ = 0;            // rows
  std::string target_;                  // page that a row or a memo points to
  std::string memo_;
  std::string text_;
};

bool CAccessReader::LookInside() {
  std::string error;
  if (!pages_.Open(&Input(), &error)) return FailFile(error);
  std::string encoding = Options().encoding;
  if (encoding.empty()) encoding = "CP" + std::to_string(pages_.CodePage());
  decoder_.SetEncoding(encoding.c_str());
  if (!ListTables()) {
    return FailFile(
        "the list of its tables cannot be read: the database is damaged or encrypted with a "
        "password");
  }
  return !names_.empty() || FailFile("there is no table in this database");
}

// The catalogue has a row for each object; those of type 1 are tables, system tables have flags.
bool CAccessReader::ListTables() {
  constexpr std::uint32_t kTable = 1;
  constexpr std::uint32_t kSystemFlags = 0x80000002;
  constexpr std::uint32_t kPageBits = 0x00FFFFFF;
  SCAN scan;
  if (!OpenTable(kCatalogue, &scan)) return false;
  const ACCESS_COLUMN* found[4] = {};
  const char* const wanted[4] = {"Id", "Name", "Type", "Flags"};
  for (const ACCESS_COLUMN& column : scan.table.columns) {
    for (std::size_t i = 0; i < 4; ++i) {
      if (column.name == wanted[i]) found[i] = &column;
    }
  }
  for (const ACCESS_COLUMN* const column : found) {
    if (column == nullptr) return false;
  }
  CAccessRow row;
  while (NextRow(&scan, &row)) {
    const auto number = [&](std::size_t i) {
      const std::string_view field = row.Field(*found[i]);
      return static_cast<std::uint32_t>(
          CByteReader(field).Unsigned(std::min<std::size_t>(4, field.size())));
    };
    std::string name;
    AppendText(row.Field(*found[1]), &name);
    const bool system = (number(3) & kSystemFlags) != 0 || name.compare(0, 4, "MSys") == 0 ||
                        name.compare(0, 4, "~TMP") == 0;
    if (number(2) != kTable || system || name.empty()) continue;
    if (names_.size() == kMostTables) return false;
    names_.push_back(name);
    places_.push_back(number(0) & kPageBits);
  }
  return true;
}

bool CAccessReader::OpenTable(std::uint32_t page, SCAN* scan) {
  if (!ReadAccessTable(pages_, page, &decoder_, &scan->table)) return false;
  scan->owned = pages_.PagesOfMap(scan->table.usageMap);
  return true;
}

bool CAccessReader::NextRow(SCAN* scan, CAccessRow* row) {
  constexpr char kDataPage = 1;
  for (;;) {
    while (scan->nextRow < scan->rows) {
      if (SplitRow(*scan, scan->nextRow++, row)) return true;
    }
    if (scan->nextPage == scan->owned.size()) return false;
    scan->nextRow = scan->rows = 0;
    const std::uint32_t page = scan->owned[scan->nextPage++];
    if (!pages_.Read(page, &scan->page) || scan->page[0] != kDataPage) continue;
    scan->rows = pages_.CountRows(scan->page);
  }
}

// A row that grew stands elsewhere, marked as deleted there; a pointer is left in its place.
bool CAccessReader::SplitRow(const SCAN& scan, std::size_t number, CAccessRow* row) {
  CAccessPages::ROW found = pages_.RowOf(scan.page, number);
  if (found.deleted) return false;
  if (found.pointer) {
    const std::uint32_t pointer = CByteReader(found.bytes).U32();
    if (pages_.Read(pointer >> 8, &target_)) found = pages_.RowOf(target_, pointer & 0xFF);
  }
  const bool whole = row->Split(pages_, scan.table, found.bytes);
  if (!whole) ++damaged_;
  return whole;
}

bool CAccessReader::ReadHeader(DICTIONARY* out) {
  chosen_ = ChooseTable(names_, Options().table);
  if (chosen_ == names_.size()) {
    return FailFile("there is no table \"" + Options().table + "\" in it");
  }
  damaged_ = 0;
  if (!OpenTable(places_[chosen_], &scan_)) {
    return FailFile("the description of the table \"" + names_[chosen_] + "\" is damaged");
  }
  for (const ACCESS_COLUMN& column : scan_.table.columns) {
    if (IsAccessValue(column.type)) {
      columns_.push_back(column);
      out->variables.push_back(VariableOf(column));
    } else {
      leftOut_ += (leftOut_.empty() ? "" : ", ") + column.name;
    }
  }
  return !columns_.empty() ||
         FailFile("the table \"" + names_[chosen_] + "\" has no columns of values");
}

VARIABLE CAccessReader::VariableOf(const ACCESS_COLUMN& column) const {
  constexpr int kNumberWidth = 12;
  constexpr int kMemoWidth = 255;
  constexpr int kGuidWidth = 38;
  VARIABLE variable;
  variable.name = TextForDisplay(column.name);
  variable.type = ST_TYPE_NUMERIC;
  variable.width = kNumberWidth;
  switch (column.type) {
    case ACCESS_TYPE::Text:
      variable.width = static_cast<int>(column.bytes / (pages_.IsJet4() ? 2 : 1));
      break;
    case ACCESS_TYPE::Memo:
      variable.width = kMemoWidth;
      break;
    case ACCESS_TYPE::Guid:
      variable.width = kGuidWidth;
      break;
    case ACCESS_TYPE::Moment:
      variable.type = ST_TYPE_DATE;
      variable.date = DATE_KIND::DayMoment;
      break;
    case ACCESS_TYPE::Money:
      variable.decimals = 4;
      break;
    case ACCESS_TYPE::Decimal:
      variable.decimals = static_cast<int>(column.scale);
      break;
    case ACCESS_TYPE::Float:
    case ACCESS_TYPE::Double:
      variable.decimals = 3;
      break;
    default:
      break;
  }
  if (IsAccessText(column.type)) variable.type = ST_TYPE_STRING;
  return variable;
}

void CAccessReader::FillBlock(CBlockFiller* out) {
  while (!out->Full() && NextRow(&scan_, &row_)) {
    for (const ACCESS_COLUMN& column : columns_) FillField(column, row_, out);
    out->EndRecord();
  }
}

void CAccessReader::FillField(const ACCESS_COLUMN& column, const CAccessRow& row,
                              CBlockFiller* out) {
  if (column.type == ACCESS_TYPE::Logical) return out->Number(row.Bit(column) ? 1 : 0);
  const std::string_view bytes = row.Field(column);
  if (IsAccessText(column.type)) {
    if (!row.Bit(column)) return out->Text({}, ST_STATUS_MISSING);
    return FillText(column, bytes, out);
  }
  double number = 0;
  const bool there = AccessNumber(column, bytes, &number) && std::isfinite(number);
  there ? out->Number(number) : out->MissingNumber(ST_STATUS_MISSING);
}

void CAccessReader::FillText(const ACCESS_COLUMN& column, std::string_view bytes,
                             CBlockFiller* out) {
  if (column.type == ACCESS_TYPE::Guid) return out->Text(GuidText(bytes));
  if (column.type == ACCESS_TYPE::Memo) {
    if (!ReadMemo(bytes, &memo_)) return out->Text({}, ST_STATUS_MISSING);
    bytes = memo_;
  }
  text_.clear();
  AppendText(bytes, &text_);
  while (!text_.empty() && text_.back() == ' ') text_.pop_back();
  out->Text(text_.substr(0, text_.find('\0')));
}

// Jet 4 has two bytes for a character, or, behind a mark, one byte for each of U+0001 to U+00FF; a
// zero changes between the two.
void CAccessReader::AppendText(std::string_view bytes, std::string* utf8) {
  if (!pages_.IsJet4()) return decoder_.Append(bytes, utf8);
  if (bytes.substr(0, 2) != "\xFF\xFE") return AppendUtf16(bytes, utf8);
  bytes.remove_prefix(2);
  for (bool narrow = true; !bytes.empty(); narrow = !narrow) {
    std::size_t end = 0;
    const std::size_t step = narrow ? 1 : 2;
    while (end < bytes.size() && bytes[end] != '\0') end += step;
    end = std::min(end, bytes.size());
    narrow ? AppendLatin1(bytes.substr(0, end), utf8) : AppendUtf16(bytes.substr(0, end), utf8);
    bytes.remove_prefix(std::min(bytes.size(), end + 1));
  }
}

// The field holds the length (30 bits) with two bits that tell where the text is: behind the
// field's 12 bytes, in one row elsewhere, or in rows that begin with a pointer to the next.
bool CAccessReader::ReadMemo(std::string_view field, std::string* out) {
  constexpr std::uint32_t kInside = 0x80000000;
  constexpr std::uint32_t kOneRow = 0x40000000;
  constexpr std::size_t kHeadBytes = 12;
  out->clear();
  CByteReader in(field);
  const std::uint32_t head = in.U32();
  std::uint32_t pointer = in.U32();
  const std::size_t length = head & (kOneRow - 1);
  if (!in.Ok() || static_cast<std::int64_t>(length) > Input().Size()) return false;
  if ((head & kInside) != 0) {
    if (field.size() > kHeadBytes) *out = field.substr(kHeadBytes, length);
    return true;
  }
  for (std::uint32_t steps = 0; out->size() < length && steps < pages_.Pages(); ++steps) {
    if (!pages_.Read(pointer >> 8, &target_)) return false;
    std::string_view bytes = pages_.RowOf(target_, pointer & 0xFF).bytes;
    if ((head & kOneRow) == 0) {
      CByteReader next(bytes);
      pointer = next.U32();
      bytes = next.Bytes(next.Left());
    }
    if (bytes.empty()) return false;
    out->append(bytes.substr(0, length - out->size()));
    if ((head & kOneRow) != 0 || pointer == 0) break;
  }
  return out->size() == length;
}

std::vector<std::string> CAccessReader::Notes() const {
  std::vector<std::string> notes;
  if (names_.size() > 1 && Options().table.empty()) {
    notes.push_back(NoteOtherTables(names_, chosen_));
  }
  if (!leftOut_.empty()) {
    notes.push_back("Columns of objects, bytes and lists were left out: " + leftOut_ + ".");
  }
  if (damaged_ > 0) {
    notes.push_back("Damaged rows were left out: " + std::to_string(damaged_) + ".");
  }
  return notes;
}

double CAccessReader::Progress() const {
  if (scan_.owned.empty()) return 1;
  return static_cast<double>(scan_.nextPage) / static_cast<double>(scan_.owned.size());
}

}  // namespace

bool IsAccess(std::string_view first) {
  constexpr std::string_view kMark("\0\1\0\0Standard ", 13);
  const std::string_view kind = first.size() >= 20 ? first.substr(13, 6) : std::string_view();
  return first.substr(0, kMark.size()) == kMark && (kind == "Jet DB" || kind == "ACE DB");
}

std::unique_ptr<CReader> ReadAccess() {
  return std::make_unique<CAccessReader>();
}

}  // namespace statrn32
