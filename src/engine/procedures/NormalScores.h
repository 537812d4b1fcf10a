// NS: normal scores replace the values.
#pragma once

#include "engine/run/EngineRun.h"

bool RunNormalScores(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
