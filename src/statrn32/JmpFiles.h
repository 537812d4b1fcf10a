// JMP tables (.jmp).
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Reader.h"

namespace statrn32 {

bool IsJmp(std::string_view first);
std::unique_ptr<CReader> ReadJmp();

}  // namespace statrn32
