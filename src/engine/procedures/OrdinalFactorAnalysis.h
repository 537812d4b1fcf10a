// OFA: factor analysis of ordinal variables by full-information maximum likelihood.
#pragma once

#include "engine/procedures/ProcedureReport.h"

bool RunOrdinalFactorAnalysis(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault);
