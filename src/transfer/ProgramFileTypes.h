// The rows that this product's programs offer beside the component's own; each program's host hands
// them out.
#pragma once

#include <vector>

#include "host/Host.h"

std::vector<HostFileType> ProgramFileTypes();
