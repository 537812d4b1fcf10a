// The files of the database rows: SQL scripts (a table and its rows as CREATE TABLE and INSERT
// statements), and connection files, which lead to a table of a database.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

// `code` is the database's row in the registry. All dialects are read alike; of several tables the
// first is taken unless another is asked for.
std::unique_ptr<CReader> ReadSqlScript(std::int32_t code);
std::unique_ptr<CWriter> WriteSqlScript(std::int32_t code);

// Is this the beginning of a connection file, not of a script?
bool IsConnectionFile(std::string_view first);

// The same, or the table of a database where the file is a connection file.
std::unique_ptr<CReader> ReadDatabase(std::int32_t code);
std::unique_ptr<CWriter> WriteDatabase(std::int32_t code);

template <std::int32_t CODE>
std::unique_ptr<CReader> ReadSql() {
  return ReadDatabase(CODE);
}
template <std::int32_t CODE>
std::unique_ptr<CWriter> WriteSql() {
  return WriteDatabase(CODE);
}

extern const NAME_RULES kSqlNames;       // SQL Server, DB2: 128 bytes
extern const NAME_RULES kSqlShortNames;  // Sybase, Oracle: 30 bytes
extern const NAME_RULES kSqlPlainNames;  // Informix: letters, digits, underscores
extern const LIMITS kSqlLimits;

}  // namespace statrn32
