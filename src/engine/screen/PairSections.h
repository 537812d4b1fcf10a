// The sections about pairs of ordinal variables and about all continuous ones together.
#pragma once

#include "engine/screen/OneVariable.h"
#include "engine/stats/Multivariate.h"
#include "engine/stats/Polychoric.h"

// "BT"
void WriteBivariateTables(ENGINERUN& run, const SCREENVARIABLES& variables,
                          const stats::CPairTables& tables);
// Unless "XT".
void WriteBivariateTests(ENGINERUN& run, const SCREENVARIABLES& variables,
                         const stats::CPairTables& tables, const stats::PolychoricMatrix& matrix);
// Unless "XM".
void WriteMultivariateTests(ENGINERUN& run, const stats::MardiaResult& result);
