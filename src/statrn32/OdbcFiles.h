// The tables that connection files of the database rows lead to.
#pragma once

#include <cstdint>
#include <memory>

#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

// `code` is the database's row in the registry: it says how names and types are written.
std::unique_ptr<CReader> ReadOdbcTable(std::int32_t code);
// Writes into the database, not into the file. A table that is there gets further rows, else it is
// made; all in one transaction.
std::unique_ptr<CWriter> WriteOdbcTable(std::int32_t code);

}  // namespace statrn32
