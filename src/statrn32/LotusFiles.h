// Lotus 1-2-3 and Quattro Pro worksheets.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Sheet.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

// Both streams of records; a Quattro Pro file of the later versions is a compound file.
bool IsLotus(std::string_view first);
bool IsQuattro(std::string_view first);

// Read by libwps in a process of its own: .wks, .wk1, .wk3, .wk4, .123; .wq1, .wq2, .wb1, .wb2,
// .wb3, .qpw.
std::unique_ptr<CReader> ReadLotus();
std::unique_ptr<CReader> ReadQuattro();

// .wk1 and .wq1: one sheet, names in the first row.
std::unique_ptr<CWriter> WriteLotus();
std::unique_ptr<CWriter> WriteQuattro();
extern const NAME_RULES kLotusNames;
extern const LIMITS kLotusLimits;

}  // namespace statrn32
