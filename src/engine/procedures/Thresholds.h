// ET, FT and MT: thresholds of ordinal variables that are equal, known, or each variable's own.
#pragma once

#include "engine/run/EngineRun.h"

bool RunEqualThresholds(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
bool RunFixedThresholds(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
bool RunMarginalThresholds(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
