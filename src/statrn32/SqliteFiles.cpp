#include "statrn32/SqliteFiles.h"

#include <cmath>
#include <filesystem>

#include <sqlite3.h>

#include "host/Numbers.h"
#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/FileReader.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/TableChoice.h"

namespace statrn32 {
namespace {

constexpr const char* kTable = "data";
constexpr std::size_t kMostTables = 10000;

// Closes what it holds.
struct CLOSER {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using DATABASE = std::unique_ptr<sqlite3, CLOSER>;
using STATEMENT = std::unique_ptr<sqlite3_stmt, CLOSER>;

STATEMENT Prepare(sqlite3* database, const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(database, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr);
  return STATEMENT(statement);
}

std::string Quoted(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

std::string TextOf(sqlite3_stmt* statement, int column) {
  const auto* const text = sqlite3_column_text(statement, column);
  return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

class CSqliteReader final : public CFileReader {
 public:
  CSqliteReader() : CFileReader(902) {}

  bool LookInside() override;
  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::vector<std::string> Tables() const override { return tables_; }
  std::vector<std::string> Notes() const override;
  double Progress() const override {
    return rows_ > 0 ? static_cast<double>(next_) / static_cast<double>(rows_) : 1;
  }

 private:
  bool FailDatabase() { return FailFile(sqlite3_errmsg(database_.get())); }
  bool ListColumns(const std::string& table, DICTIONARY* out);
  bool TellTypes(const std::string& table, DICTIONARY* out);
  void FillValue(int column, CBlockFiller* out);

  DATABASE database_;
  STATEMENT records_;  // goes before the database
  std::vector<std::string> tables_;
  std::size_t table_ = 0;
  std::vector<std::string> declared_;
  std::vector<std::int32_t> types_;
  std::int64_t rows_ = 0;
  std::int64_t next_ = 0;
  std::int64_t unreadable_ = 0;
};

bool CSqliteReader::LookInside() {
  sqlite3* database = nullptr;
  const int opened = sqlite3_open_v2(Name().c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
  database_.reset(database);
  if (opened != SQLITE_OK) return FailDatabase();
  sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_exec(database, "PRAGMA cell_size_check=ON", nullptr, nullptr, nullptr);
  const STATEMENT list = Prepare(database,
                                 "SELECT name FROM sqlite_master WHERE type='table' AND name NOT "
                                 "LIKE 'sqlite\\_%' ESCAPE '\\' "
                                 "AND sql NOT LIKE 'CREATE VIRTUAL%' ORDER BY rowid");
  int status = SQLITE_ROW;
  while (list && (status = sqlite3_step(list.get())) == SQLITE_ROW) {
    if (tables_.size() > kMostTables) return FailFile("the list of tables is damaged");
    tables_.push_back(TextOf(list.get(), 0));
  }
  if (!list || status != SQLITE_DONE) return FailDatabase();
  return !tables_.empty() || FailFile("there is no table in this database");
}

bool CSqliteReader::ReadHeader(DICTIONARY* out) {
  table_ = ChooseTable(tables_, Options().table);
  if (table_ == tables_.size()) {
    return FailFile("there is no table \"" + Options().table + "\" in it");
  }
  const std::string& table = tables_[table_];
  if (!ListColumns(table, out) || !TellTypes(table, out)) return false;
  records_ = Prepare(database_.get(), "SELECT * FROM " + Quoted(table));
  out->cases = rows_;
  return records_ != nullptr || FailDatabase();
}

bool CSqliteReader::ListColumns(const std::string& table, DICTIONARY* out) {
  const STATEMENT all = Prepare(database_.get(), "SELECT * FROM " + Quoted(table) + " LIMIT 0");
  if (!all) return FailDatabase();
  for (int i = 0; i < sqlite3_column_count(all.get()); ++i) {
    VARIABLE variable;
    const char* const name = sqlite3_column_name(all.get(), i);
    const char* const declared = sqlite3_column_decltype(all.get(), i);
    variable.name = TextForDisplay(name != nullptr ? name : "");
    declared_.emplace_back(declared != nullptr ? declared : "");
    out->variables.push_back(std::move(variable));
  }
  return true;
}

// One pass that counts numbers and texts and measures the texts.
bool CSqliteReader::TellTypes(const std::string& table, DICTIONARY* out) {
  std::vector<std::int64_t> numbers(declared_.size());
  std::vector<std::int64_t> texts(declared_.size());
  std::vector<std::int64_t> dates(declared_.size());
  std::vector<int> bytes(declared_.size(), 1);
  DATE_KIND kind = DATE_KIND::None;
  std::vector<DATE_KIND> kinds(declared_.size(), DATE_KIND::None);
  const STATEMENT all = Prepare(database_.get(), "SELECT * FROM " + Quoted(table));
  int status = SQLITE_ERROR;
  while (all && (status = sqlite3_step(all.get())) == SQLITE_ROW) {
    // Damaged pages may lead in a circle; no row takes less than a byte.
    if (++rows_ > Input().Size()) return FailFile("the pages of the table are damaged");
    for (std::size_t i = 0; i < declared_.size(); ++i) {
      const int column = static_cast<int>(i);
      const int type = sqlite3_column_type(all.get(), column);
      if (type == SQLITE_INTEGER || type == SQLITE_FLOAT) ++numbers[i];
      if (type != SQLITE_TEXT) continue;
      ++texts[i];
      kind = ParseIsoMoment(TextOf(all.get(), column)).kind;
      if (kind != DATE_KIND::None) ++dates[i];
      if (kinds[i] != DATE_KIND::SerialMoment) kinds[i] = kind;
      bytes[i] = std::max(bytes[i], sqlite3_column_bytes(all.get(), column));
    }
  }
  if (status != SQLITE_DONE) return FailDatabase();
  for (std::size_t i = 0; i < declared_.size(); ++i) {
    VARIABLE& variable = out->variables[i];
    const bool date = texts[i] > 0 && dates[i] == texts[i] && numbers[i] == 0;
    const bool text = texts[i] > numbers[i] ||
                      (numbers[i] == 0 && declared_[i].find("CHAR") != std::string::npos) ||
                      (numbers[i] == 0 && declared_[i] == "TEXT");
    variable.type = date ? ST_TYPE_DATE : text ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
    variable.date = date ? kinds[i] : DATE_KIND::None;
    variable.width = text && !date ? bytes[i] : 12;
    variable.decimals = text || date ? 0 : 3;
    types_.push_back(variable.type);
  }
  return true;
}

void CSqliteReader::FillBlock(CBlockFiller* out) {
  while (!out->Full() && next_ < rows_) {
    const int status = sqlite3_step(records_.get());
    if (status == SQLITE_DONE) return;
    if (status != SQLITE_ROW) {
      FailDatabase();
      return;
    }
    for (std::size_t i = 0; i < types_.size(); ++i) FillValue(static_cast<int>(i), out);
    out->EndRecord();
    ++next_;
  }
}

void CSqliteReader::FillValue(int column, CBlockFiller* out) {
  sqlite3_stmt* const row = records_.get();
  const int stored = sqlite3_column_type(row, column);
  const std::int32_t type = types_[static_cast<std::size_t>(column)];
  if (type == ST_TYPE_STRING) {
    if (stored == SQLITE_NULL || stored == SQLITE_BLOB) return out->Text({}, ST_STATUS_MISSING);
    const auto* const text = sqlite3_column_text(row, column);
    const std::string_view view = text != nullptr ? reinterpret_cast<const char*>(text) : "";
    return IsUtf8(view) ? out->Text(view) : out->Text(TextForDisplay(view));
  }
  if (stored == SQLITE_INTEGER || stored == SQLITE_FLOAT) {
    const double number = sqlite3_column_double(row, column);
    if (std::isfinite(number)) return out->Number(number);
  }
  if (stored == SQLITE_TEXT && type == ST_TYPE_DATE) {
    return out->Number(ParseIsoMoment(TextOf(row, column)).serial);
  }
  if (stored != SQLITE_NULL) ++unreadable_;
  out->MissingNumber(ST_STATUS_MISSING);
}

std::vector<std::string> CSqliteReader::Notes() const {
  std::vector<std::string> notes;
  if (tables_.size() > 1 && Options().table.empty()) {
    notes.push_back(NoteOtherTables(tables_, table_));
  }
  if (unreadable_ > 0) {
    notes.push_back("Values of another kind than their column became missing values: " +
                    std::to_string(unreadable_) + ".");
  }
  return notes;
}

class CSqliteWriter final : public CFileWriter {
 public:
  CSqliteWriter() : CFileWriter(902) {}

 protected:
  bool Create() override;
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override;
  bool Close() override;

 private:
  bool FailDatabase() { return FailFile(sqlite3_errmsg(database_.get())); }
  bool Run(const std::string& sql) {
    return sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK ||
           FailDatabase();
  }

  DATABASE database_;
  STATEMENT insert_;
};

bool CSqliteWriter::Create() {
  COutputFile empty;  // says why where the file cannot be created
  if (!empty.Create(Name()) || !empty.Close()) {
    return FailFile("cannot be created: " + empty.Reason());
  }
  sqlite3* database = nullptr;
  const int opened = sqlite3_open_v2(Name().c_str(), &database, SQLITE_OPEN_READWRITE, nullptr);
  database_.reset(database);
  return opened == SQLITE_OK || FailDatabase();
}

// The file takes its place only when it is whole, so nothing need be journalled.
bool CSqliteWriter::PutHeader() {
  std::string columns;
  std::string places;
  for (const VARIABLE& variable : Variables()) {
    columns += (columns.empty() ? "" : ", ") + Quoted(variable.name) +
               (variable.type == ST_TYPE_STRING ? " TEXT" : " REAL");
    places += places.empty() ? "?" : ",?";
  }
  if (!Run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; BEGIN") ||
      !Run(std::string("CREATE TABLE ") + kTable + " (" + columns + ")")) {
    return false;
  }
  insert_ =
      Prepare(database_.get(), std::string("INSERT INTO ") + kTable + " VALUES (" + places + ")");
  return insert_ != nullptr || FailDatabase();
}

bool CSqliteWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const int place = static_cast<int>(i) + 1;
    const OUT_CELL& cell = cells[i];
    if (cell.missing) {
      sqlite3_bind_null(insert_.get(), place);
    } else if (Variables()[i].type == ST_TYPE_STRING) {
      sqlite3_bind_text(insert_.get(), place, cell.text.c_str(), static_cast<int>(cell.text.size()),
                        SQLITE_STATIC);
    } else {
      sqlite3_bind_double(insert_.get(), place, cell.number);  // not a number becomes NULL
    }
  }
  const bool done = sqlite3_step(insert_.get()) == SQLITE_DONE;
  if (!done) FailDatabase();
  sqlite3_reset(insert_.get());
  return done;
}

bool CSqliteWriter::PutEnd() {
  insert_.reset();
  return Run("COMMIT");
}

bool CSqliteWriter::Close() {
  insert_.reset();
  database_.reset();
  return true;
}

}  // namespace

constexpr NAME_RULES kColumnNames = {128,
                                     " !#$%&()*+,-./:;<=>?@[]^_{|}~'0123456789",
                                     " !#$%&()*+,-./:;<=>?@[]^_{|}~'",
                                     false,
                                     false,
                                     false,
                                     {}};
constexpr LIMITS kSqliteLimits = {.variables = 2000};

bool IsSqlite(std::string_view first) {
  return first.substr(0, 16) == std::string_view("SQLite format 3\0", 16);
}

std::unique_ptr<CReader> ReadSqlite() {
  return std::make_unique<CSqliteReader>();
}
std::unique_ptr<CWriter> WriteSqlite() {
  return std::make_unique<CSqliteWriter>();
}

}  // namespace statrn32
