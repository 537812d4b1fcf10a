// EM: mean and covariance matrix of an incomplete multivariate normal sample, and what is expected
// of its missing values.
#pragma once

#include "engine/run/EngineRun.h"

bool RunExpectationMaximisation(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
