#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "host/Numbers.h"
#include "host/statrn32.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/SqlDialect.h"
#include "statrn32/SqlFiles.h"

namespace statrn32 {
namespace {

constexpr std::string_view kReserved[] = {
    "ADD",    "ALL",    "AND",    "AS",     "ASC",    "BY",   "CASE",  "CHECK", "COLUMN",
    "CREATE", "DATE",   "DELETE", "DESC",   "DROP",   "ELSE", "END",   "FROM",  "GROUP",
    "HAVING", "IN",     "INDEX",  "INSERT", "INTO",   "IS",   "KEY",   "LIKE",  "NOT",
    "NULL",   "ON",     "OR",     "ORDER",  "SELECT", "SET",  "TABLE", "THEN",  "TO",
    "UNION",  "UNIQUE", "UPDATE", "USER",   "VALUES", "WHEN", "WHERE", "WITH"};

constexpr SQL_DIALECT kDialects[] = {
    {25, "DOUBLE PRECISION", "VARCHAR(%zu)", 16384, "TEXT", '"', '"', "'", "\ngo\n", 1, "",
     &kSqlShortNames},
    {27, "FLOAT", "VARCHAR(%zu)", 255, "LVARCHAR(%zu)", 0, 0, "'", ";\n", 1, "", &kSqlPlainNames},
    {28, "FLOAT(53)", "NVARCHAR(%zu)", 4000, "NVARCHAR(MAX)", '[', ']', "N'", ";\nGO\n", 1000, "",
     &kSqlNames},
    {42, "BINARY_DOUBLE", "VARCHAR2(%zu CHAR)", 4000, "CLOB", '"', '"', "'", ";\n", 1, "d",
     &kSqlShortNames},
    {44, "DOUBLE", "VARCHAR(%zu)", 32672, "CLOB(%zu)", '"', '"', "'", ";\n", 1000, "", &kSqlNames},
};

class CSqlWriter final : public CFileWriter {
 public:
  explicit CSqlWriter(std::int32_t code) : CFileWriter(code), dialect_(*FindSqlDialect(code)) {}

 protected:
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override { return rows_ == 0 || Put(dialect_.endRow); }

 private:
  std::string TypeOf(const VARIABLE& variable) const;
  void AppendCell(const OUT_CELL& cell, const VARIABLE& variable);

  const SQL_DIALECT& dialect_;
  std::string table_;
  std::string line_;
  int rows_ = 0;  // of the statement being written
};

std::string CSqlWriter::TypeOf(const VARIABLE& variable) const {
  if (variable.type != ST_TYPE_STRING) return dialect_.number;
  const auto bytes = static_cast<std::size_t>(std::max(1, variable.width));
  char type[64];
  std::snprintf(type, sizeof type, bytes <= dialect_.mostText ? dialect_.text : dialect_.longText,
                bytes);
  return type;
}

bool CSqlWriter::PutHeader() {
  constexpr const char* kDefaultTable = "data";
  const std::string& wanted = Dictionary().tableName;
  std::vector<std::string> name = {wanted.empty() ? kDefaultTable : wanted};
  MakeLegalNames(*dialect_.names, &name);
  AppendSqlName(dialect_, name[0], &table_);
  line_ = "CREATE TABLE " + table_ + " (";
  for (std::size_t i = 0; i < Variables().size(); ++i) {
    line_ += i == 0 ? "\n  " : ",\n  ";
    AppendSqlName(dialect_, Variables()[i].name, &line_);
    line_ += " " + TypeOf(Variables()[i]);
  }
  return Put(line_ + "\n)" + dialect_.endRow);
}

bool CSqlWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  line_.clear();
  if (rows_ == dialect_.rowsAtOnce) {
    line_ = dialect_.endRow;
    rows_ = 0;
  }
  line_ += rows_ == 0 ? "INSERT INTO " + table_ + " VALUES\n(" : ",\n(";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line_ += ',';
    AppendCell(cells[i], Variables()[i]);
  }
  line_ += ')';
  ++rows_;
  return Put(line_);
}

void CSqlWriter::AppendCell(const OUT_CELL& cell, const VARIABLE& variable) {
  const bool text = variable.type == ST_TYPE_STRING;
  if (cell.missing || (!text && std::isnan(cell.number))) {
    line_ += "NULL";
  } else if (text) {
    AppendSqlText(dialect_, cell.text, &line_);
  } else {
    const std::string number = FormatShortest(cell.number);
    line_ += number;
    if (number.find('e') != std::string::npos) line_ += dialect_.longNumber;
  }
}

}  // namespace

constexpr NAME_RULES kSqlNames = {128, "_", "_ ", false, false, false, {}};
constexpr NAME_RULES kSqlShortNames = {30, "_", "_ ", false, false, false, {}};
constexpr NAME_RULES kSqlPlainNames = {128, "_", "_", true, false, false, kReserved};
constexpr LIMITS kSqlLimits = {.variables = 1012,
                               .textBytes = 32000,
                               .textRemark = "Oracle takes an empty text for a missing one."};

const SQL_DIALECT* FindSqlDialect(std::int32_t code) {
  const auto* const found =
      std::find_if(std::begin(kDialects), std::end(kDialects),
                   [code](const SQL_DIALECT& dialect) { return dialect.code == code; });
  return found != std::end(kDialects) ? found : nullptr;
}

void AppendSqlName(const SQL_DIALECT& dialect, std::string_view name, std::string* out) {
  if (dialect.openName == 0) {
    out->append(name);
    return;
  }
  *out += dialect.openName;
  for (const char c : name) out->append(c == dialect.closeName ? 2 : 1, c);
  *out += dialect.closeName;
}

void AppendSqlText(const SQL_DIALECT& dialect, std::string_view text, std::string* out) {
  *out += dialect.openString;
  for (const char c : text) out->append(c == '\'' ? 2 : 1, c);
  *out += '\'';
}

std::unique_ptr<CWriter> WriteSqlScript(std::int32_t code) {
  return std::make_unique<CSqlWriter>(code);
}

}  // namespace statrn32
