// Tables of factor loadings, and what of them bootstrapping samples.
#pragma once

#include "engine/procedures/ProcedureReport.h"

// "Factor 1", "Factor 2" ...
std::vector<CString> FactorNames(int factors);

// Loadings with their sums of squares below, and the uniquenesses beside them unless empty.
void WriteLoadings(CReport& report, const CString& heading, const std::vector<CString>& names,
                   const Eigen::MatrixXd& loadings, const Eigen::VectorXd& uniqueness);

// Adds the VARIMAX-rotated loadings of the factors and, of two and more, the PROMAX-rotated ones
// with the correlations of these factors. Where all the data have no PROMAX solution, since the
// loadings of a factor are 0, it is left out.
void NoteRotatedLoadings(ENGINERUN& run, const std::vector<CString>& names,
                         const Eigen::MatrixXd& varimax);
