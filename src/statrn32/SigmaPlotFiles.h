// SigmaPlot notebooks (.jnb).
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Reader.h"

namespace statrn32 {

// Notebooks are compound files, as other formats are: their streams tell them apart.
bool IsSigmaPlot(std::string_view first);
std::unique_ptr<CReader> ReadSigmaPlot();

}  // namespace statrn32
