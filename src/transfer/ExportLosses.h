// What a data set loses when it is exported, told before anything is written.
#pragma once

#include <cstdint>
#include <vector>

#include "datadoc/DataSet.h"
#include "host/Types.h"

// One sentence a fact, in UTF-8; empty when a file of the type holds all there is.
std::vector<CString> ExportLosses(const TORVIKSTRUCT& data, std::int32_t type);
