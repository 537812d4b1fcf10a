// The file of "RA": the selected and transformed data.
#pragma once

#include "engine/run/EngineRun.h"

// The names of the files that RA asks for: its own, or where a line makes several completed data
// sets one for each, NAME_1.VSF, NAME_2.VSF ...; one empty name without RA.
std::vector<CString> SavedFileNames(const JOB& job);

// Appends the cases of this repetition, of the completed data set `run.dataSet` to its own file.
// The variables are those of the SE lines, or all that are not dropped; cases without a weight
// stay. Missing cells are -999999. Returns false with the reason in `fault`; what the disk did not
// take is told by run.files.CheckWritten, so that several data sets can be saved at the same time.
bool SaveData(ENGINERUN& run, FAULT& fault);
