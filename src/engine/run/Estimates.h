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
// Those below the diagonal, by rows; they belong to the loadings that stand before them.
ESTIMATES FactorCorrelationEstimates(CString title, const std::vector<CString>& factors,
                                     const Eigen::MatrixXd& correlation);

// All values, one set after the other.
std::vector<double> ValuesOf(const std::vector<ESTIMATES>& estimates);
// Takes out sets of factors that the others lack.
void LeaveOutFactors(const std::vector<ESTIMATES>& others, std::vector<ESTIMATES>& estimates);
// Have both the same parameters?
bool HaveSameNames(const std::vector<ESTIMATES>& a, const std::vector<ESTIMATES>& b);
// Gives the factors the order and the signs in which their loadings come nearest to those of
// `target`, which has the same parameters; correlations of factors follow the loadings before them.
void AlignLoadings(const std::vector<ESTIMATES>& target, std::vector<ESTIMATES>& estimates);
