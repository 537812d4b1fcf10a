// Faults that a screening finds and goes on after, so that the output shows everything else.
#pragma once

#include "engine/screen/Variables.h"
#include "engine/stats/Status.h"

// A variable that cannot be described or tested.
void NoteVariableFault(ENGINERUN& run, const SCREENVARIABLE& variable, stats::EStatus status);
// Something that the output line asked for cannot be had.
void NoteOutputFault(ENGINERUN& run, CString cause, CString remedy);
// Why a pair has no correlation; of an estimation that did not end, with its last value.
CString PairStatusText(stats::EStatus status, double last);
FAULT OutputFault(const ENGINERUN& run, CString cause, CString remedy);
