// PR and LO: probit and logistic regression of ordinal variables.
#pragma once

#include "engine/run/EngineRun.h"

bool RunOrdinalRegression(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
