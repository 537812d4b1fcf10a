// What the sections of the regressions share.
#pragma once

#include "engine/procedures/RegressionData.h"
#include "engine/stats/LocationScale.h"
#include "engine/stats/RegressionFit.h"

// Log-likelihoods and the test of all slopes.
void AddLikelihoods(CFactTable& facts, const CReport& report, const stats::RegressionFit& fit);

// R-square and the residual standard deviation, which may be known to be 1.
void AddResiduals(CFactTable& facts, const CReport& report, const stats::LocationScale& estimates,
                  bool sdKnown);

// The intercept, and the slopes of the columns.
std::vector<ESTIMATES::PARAMETER> CoefficientsOf(const CRegressionData& data,
                                                 const std::vector<double>& coefficient,
                                                 const std::vector<double>& standardError);

// Gives an equation's estimates to those who asked for them, if any.
void TellEstimates(ENGINERUN& run, ESTIMATES estimates);

// A table with z and p under the name `title`; `column` is the heading of the parameters' names. A
// standard error of 0 marks what is fixed.
void WriteZTable(CReport& report, const CString& title, const CString& column,
                 const std::vector<ESTIMATES::PARAMETER>& parameters);
