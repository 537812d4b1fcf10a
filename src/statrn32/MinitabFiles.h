// Minitab portable worksheets (.mtp).
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Reader.h"

namespace statrn32 {

bool IsMinitabPortable(std::string_view first);
std::unique_ptr<CReader> ReadMinitab();

}  // namespace statrn32
