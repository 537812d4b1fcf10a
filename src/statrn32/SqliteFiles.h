// SQLite databases.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsSqlite(std::string_view first);

// One table: the first unless another is asked for. A column whose values are numbers in at least
// half of its rows is numeric; one declared as a date or time is one where its texts are ISO 8601.
std::unique_ptr<CReader> ReadSqlite();
// A new database with one table, "data".
std::unique_ptr<CWriter> WriteSqlite();

extern const NAME_RULES kColumnNames;
extern const LIMITS kSqliteLimits;

}  // namespace statrn32
