// The sections about the data as a whole: where they come from, which cases are used, what is
// missing.
#pragma once

#include "engine/screen/Variables.h"

void WriteDataSection(const ENGINERUN& run, const SCREENVARIABLES& variables);
void WriteMissingSection(const ENGINERUN& run, const SCREENVARIABLES& variables);
