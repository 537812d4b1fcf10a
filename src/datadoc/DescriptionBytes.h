// A description as bytes and back, without any loss: texts of any length, every category slot.
// For files of this program's own; nothing but the same build reads them.
#pragma once

#include <string_view>

#include "datadoc/DataSet.h"

CString DescriptionToBytes(const TORVIKSTRUCT& data);

// False when the bytes are no description; `data` is unspecified then.
bool DescriptionFromBytes(std::string_view bytes, TORVIKSTRUCT& data);
