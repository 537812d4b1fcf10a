// SQL scripts: a table and its rows as CREATE TABLE and INSERT statements.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

// `CODE` is the database's row in the registry. All dialects are read alike; of several tables the
// first is taken unless another is asked for.
std::unique_ptr<CReader> ReadSqlScript(std::int32_t code);
std::unique_ptr<CWriter> WriteSqlScript(std::int32_t code);

template <std::int32_t CODE>
std::unique_ptr<CReader> ReadSql() {
  return ReadSqlScript(CODE);
}
template <std::int32_t CODE>
std::unique_ptr<CWriter> WriteSql() {
  return WriteSqlScript(CODE);
}

extern const NAME_RULES kSqlNames;       // SQL Server, DB2: 128 bytes
extern const NAME_RULES kSqlShortNames;  // Sybase, Oracle: 30 bytes
extern const NAME_RULES kSqlPlainNames;  // Informix: letters, digits, underscores
extern const LIMITS kSqlLimits;

}  // namespace statrn32
