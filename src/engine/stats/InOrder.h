// Pieces of work on several threads, each of them finished in its turn.
#pragma once

#include <cstdint>
#include <functional>

namespace stats {

// What is left to do with a piece when all before it are finished; returns false to stop.
using FinishPiece = std::function<bool()>;
// Works on pieces, one after the other, on a thread of its own.
using PieceWorker = std::function<FinishPiece(std::int64_t piece)>;

// Has the pieces 0 ... count - 1 worked on by up to `threads` workers, each made on its thread, and
// finishes them in order, one at a time, on any thread. A worker that is too far ahead waits, so
// that little is held. Returns false when a piece asked to stop; the first exception is thrown
// again.
bool ForEachInOrder(int threads, std::int64_t count,
                    const std::function<PieceWorker()>& makeWorker);

}  // namespace stats
