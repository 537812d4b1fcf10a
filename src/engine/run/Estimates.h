// Estimates of a procedure, put together and compared between samples.
#pragma once

#include <Eigen/Core>

#include "engine/run/EngineRun.h"

// Estimates without standard errors, by name; more are put behind by AddEstimate.
ESTIMATES MakeEstimates(CString title);
void AddEstimate(ESTIMATES& estimates, CString name, double value);
// A row a variable, a column a factor.
ESTIMATES LoadingEstimates(CString title, const std::vector<CString>& rows,
                           const std::vector<CString>& columns, const Eigen::MatrixXd& loadings);

// All values, one set after the other.
std::vector<double> ValuesOf(const std::vector<ESTIMATES>& estimates);
// Have both the same parameters?
bool HaveSameNames(const std::vector<ESTIMATES>& a, const std::vector<ESTIMATES>& b);
// Turns and exchanges the columns of loadings so that they come nearest to those of `target`, which
// has the same parameters.
void AlignLoadings(const std::vector<ESTIMATES>& target, std::vector<ESTIMATES>& estimates);
