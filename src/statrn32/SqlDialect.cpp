#include "statrn32/SqlDialect.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "host/statrn32.h"
#include "statrn32/Formats.h"
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

constexpr std::int32_t kStandard = 25;  // the types of this row are known nearly everywhere

constexpr struct {
  const char* part;  // of a product's name
  std::int32_t code;
} kProducts[] = {{"Microsoft SQL Server", 28}, {"Oracle", 42}, {"DB2", 44}, {"Informix", 27}};

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

const SQL_DIALECT& SqlDialectOf(std::string_view product) {
  for (const auto& row : kProducts) {
    if (product.find(row.part) != std::string_view::npos) return *FindSqlDialect(row.code);
  }
  return *FindSqlDialect(kStandard);
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

// The parts of a name with dots are names of their own: "dbo.people".
void AppendSqlPath(const SQL_DIALECT& dialect, std::string_view path, std::string* out) {
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find('.', begin), path.size());
    if (begin > 0) *out += '.';
    AppendSqlName(dialect, path.substr(begin, end - begin), out);
    begin = end + 1;
  }
}

std::string SqlTypeOf(const SQL_DIALECT& dialect, const VARIABLE& variable) {
  if (variable.type != ST_TYPE_STRING) return dialect.number;
  const auto bytes = static_cast<std::size_t>(std::max(1, variable.width));
  char type[64];
  std::snprintf(type, sizeof type, bytes <= dialect.mostText ? dialect.text : dialect.longText,
                bytes);
  return type;
}

}  // namespace statrn32
