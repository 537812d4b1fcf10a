// A clock for throttling what is shown.
#pragma once

#include <cstdint>

// Milliseconds since some fixed moment; never goes back. Costs a few nanoseconds, so that loops may
// ask for each record.
std::int64_t GetTickCount();
