// Work shared among threads so that the result never depends on their number: each piece of work
// has a number and writes only what belongs to that number.
#pragma once

#include <cstdint>
#include <functional>

namespace stats {

// The number of threads to use when the caller asks for `wanted`: itself, or for 0 and below the
// number of processors.
int ThreadCount(int wanted);

// Calls work(0) ... work(count - 1), each once, on up to `threads` threads (the calling one is one
// of them) in no fixed order; returns when all are done. The first exception is thrown again after
// that; pieces not yet begun are then left out, as they are when the computation is cancelled
// (Cancel.h). When no further thread is to be had, fewer are used.
void ParallelFor(int threads, std::int64_t count, const std::function<void(std::int64_t)>& work);

}  // namespace stats
