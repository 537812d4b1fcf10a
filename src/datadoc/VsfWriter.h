// Writes a system data file durably: beside its target, and in its place at once or not at all.
#pragma once

#include "datadoc/DataSet.h"
#include "vexutils/BlockIo.h"

// Writes `data` in the layout of `kind` with the cells that stand in the open file `scratch`,
// record after record from its start. On failure the target stands as it was and `reason` says why
// (ECANCELED in `errno` for a stop by `progress`).
bool WriteVsfFile(const CString& fileName, const TORVIKSTRUCT& data, int kind, int scratch,
                  CString& reason, const CopyProgress& progress = {});
