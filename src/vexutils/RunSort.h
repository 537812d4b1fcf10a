// The plan of fqsort for a file that is larger than memory: runs that fit the budget are sorted one
// after the other, then merged. Files are read and written from the front to the end in large
// blocks.
#pragma once

#include "vexutils/BlockIo.h"
#include "vexutils/SortJob.h"

// Opens in `sorted` a nameless file with the sorted records. False with the reason in errno;
// `job.file` is only read.
bool SortInRuns(const SortJob& job, CDescriptor& sorted);
