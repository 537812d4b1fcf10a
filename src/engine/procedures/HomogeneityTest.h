// HT: have two ordinal variables the same distribution?
#pragma once

#include "engine/run/EngineRun.h"

bool RunHomogeneityTest(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
