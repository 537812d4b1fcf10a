// Statistics of a range that is gone through in pieces.
#pragma once

#include "dataview/DataView.h"

// What both together come to.
RangeStatistics MergeStatistics(const RangeStatistics& a, const RangeStatistics& b);
