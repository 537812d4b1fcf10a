// IMPUTE: missing values replaced by those of the most similar cases.
#pragma once

#include "engine/run/EngineRun.h"

bool RunMatching(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
