// How much memory the system can give.
#pragma once

#include <cstdint>

// Bytes of memory that are free or can be freed without swapping, held to the limit of this
// process's control group; half of the machine's memory where the system does not tell.
std::int64_t FreeMemoryBytes();
