// PC: principal components.
#pragma once

#include "engine/run/EngineRun.h"

bool RunPrincipalComponents(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
