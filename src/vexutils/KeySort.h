// The plan of fqsort for a file that fits the machine's free memory: only the keys are sorted, and
// the records are gathered from the mapped file.
#pragma once

#include "vexutils/SortJob.h"

// Whether the keys fit the budget and the file fits the memory that the system can use for its
// pages.
bool MaySortByKeys(const SortJob& job);

enum class KeySortResult { Failed, Copied, WasSorted, NotMapped };

// Writes the sorted records to the start of `sorted`; writes nothing where the file is found sorted
// or cannot be mapped. A failure leaves its reason in errno; `job.file` is only read.
KeySortResult SortByKeys(const SortJob& job, int sorted);
