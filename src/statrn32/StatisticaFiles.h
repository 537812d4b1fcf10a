// Statistica data files of the first generation (.sta).
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Reader.h"

namespace statrn32 {

bool IsStatistica(std::string_view first);
std::unique_ptr<CReader> ReadStatistica();

}  // namespace statrn32
