// RG and TS: linear regression by least squares in one stage and in two.
#pragma once

#include "engine/run/EngineRun.h"

bool RunRegression(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
bool RunTwoStageRegression(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
