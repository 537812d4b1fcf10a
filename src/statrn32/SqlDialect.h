// How the databases of the file-type list write SQL.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "statrn32/Dictionary.h"
#include "statrn32/Names.h"

namespace statrn32 {

struct SQL_DIALECT {
  std::int32_t code;
  const char* number;    // type of a column of numbers
  const char* text;      // type of a column of texts, with "%zu" for its bytes
  std::size_t mostText;  // beyond these bytes
  const char* longText;  // this type, where "%zu" may stand too
  char openName;         // marks around a name; 0 for none
  char closeName;
  const char* openString;  // of a text
  const char* endRow;      // behind the last row of a statement
  int rowsAtOnce;          // of an INSERT
  const char* longNumber;  // behind a number with an exponent
  const NAME_RULES* names;
};

// Null for a code that is no database.
const SQL_DIALECT* FindSqlDialect(std::int32_t code);
// That of a database by the name that it gives itself; for one that has no row in the list, types
// that the standard knows.
const SQL_DIALECT& SqlDialectOf(std::string_view product);

// Appends a name with the marks of the dialect, a text with its quotes.
void AppendSqlName(const SQL_DIALECT& dialect, std::string_view name, std::string* out);
void AppendSqlText(const SQL_DIALECT& dialect, std::string_view text, std::string* out);
// A table's name that may have the names of its schema and database before it, with dots between.
void AppendSqlPath(const SQL_DIALECT& dialect, std::string_view path, std::string* out);

// The type of a column for a variable.
std::string SqlTypeOf(const SQL_DIALECT& dialect, const VARIABLE& variable);

}  // namespace statrn32
