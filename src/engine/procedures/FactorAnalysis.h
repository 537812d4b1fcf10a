// FA: exploratory factor analysis.
#pragma once

#include "engine/run/EngineRun.h"

bool RunFactorAnalysis(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
