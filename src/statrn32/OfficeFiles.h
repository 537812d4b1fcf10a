// Spreadsheets in zip packages: Office Open XML (.xlsx) and OpenDocument (.ods).
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsXlsx(std::string_view first);
bool IsOds(std::string_view first);

std::unique_ptr<CReader> ReadXlsx();
std::unique_ptr<CReader> ReadOds();
// One sheet, names in the first row.
std::unique_ptr<CWriter> WriteXlsx();
std::unique_ptr<CWriter> WriteOds();

extern const LIMITS kXlsxLimits;
extern const LIMITS kOdsLimits;

}  // namespace statrn32
