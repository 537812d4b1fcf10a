// Tables of HTML pages.
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsHtml(std::string_view first);

// The largest table unless another is asked for. Tables inside a cell of a table are not part of
// it. Cells that span rows or columns leave the places that they cover empty.
std::unique_ptr<CReader> ReadHtml();
// A page in UTF-8 with one table.
std::unique_ptr<CWriter> WriteHtml();

extern const LIMITS kHtmlLimits;

}  // namespace statrn32
