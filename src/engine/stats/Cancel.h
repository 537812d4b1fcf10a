// How whoever runs the computations asks them to stop.
#pragma once

namespace stats {

// Thrown out of a computation that was asked to stop; everything that it took is given back.
struct Cancelled {};

// Asked now and then from any thread while something is computed, so that it has to be quick; null:
// nobody asks. To be set while nothing is computed.
using CancelTest = bool (*)();
void SetCancelTest(CancelTest test);

// Throws Cancelled when it is time to stop. ParallelFor calls it before each piece of work; loops
// that take longer than a few hundredths of a second without it call it themselves.
void StopIfCancelled();

}  // namespace stats
