// Tables of factor loadings.
#pragma once

#include "engine/procedures/ProcedureReport.h"

// "Factor 1", "Factor 2" ...
std::vector<CString> FactorNames(int factors);

// Loadings with their sums of squares below, and the uniquenesses beside them unless empty.
void WriteLoadings(CReport& report, const CString& heading, const std::vector<CString>& names,
                   const Eigen::MatrixXd& loadings, const Eigen::VectorXd& uniqueness);
