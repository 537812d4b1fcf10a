// The file of TH: a line for each variable, its thresholds and behind "!" its name.
#pragma once

#include <vector>

#include "engine/run/OutputFiles.h"

void WriteThresholdLine(COutputFile& file, const CString& variable,
                        const std::vector<double>& thresholds);

// The thresholds of `variable` in the file `name`. Names are compared as they stand. In a file
// without names (numbers only) there may be one line, which then is the variable's. Returns false
// with the reason in `problem`.
bool ReadThresholds(const CString& name, const CString& variable, std::vector<double>& thresholds,
                    CString& problem);
