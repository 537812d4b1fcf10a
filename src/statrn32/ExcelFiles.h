// Excel workbooks (.xls): the record streams of all versions from 2 to 2003.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsXls(std::string_view first);

std::unique_ptr<CReader> ReadXls();
// Version 97 (BIFF8): one sheet, names in the first row.
std::unique_ptr<CWriter> WriteXls();

// Of all spreadsheets: any text.
extern const NAME_RULES kSheetNames;
extern const LIMITS kXlsLimits;

// Does a built-in number format of spreadsheets show a date? The custom ones begin at 164.
DATE_KIND BuiltInDateKind(unsigned format);

}  // namespace statrn32
