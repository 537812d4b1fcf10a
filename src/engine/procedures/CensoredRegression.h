// CR: regression of censored variables.
#pragma once

#include "engine/run/EngineRun.h"

bool RunCensoredRegression(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
