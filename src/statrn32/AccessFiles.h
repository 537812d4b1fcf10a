// Access databases (.mdb, .accdb).
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Reader.h"

namespace statrn32 {

bool IsAccess(std::string_view first);
std::unique_ptr<CReader> ReadAccess();

}  // namespace statrn32
