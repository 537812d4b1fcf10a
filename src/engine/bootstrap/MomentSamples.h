// Bootstrap samples of the moment matrix, the means and the standard deviations.
#pragma once

#include "engine/run/EngineRun.h"

// What BS asks for and cannot be had, before anything is computed. False with the reason in
// `fault`.
bool CheckBootstrap(const JOB& job, FAULT& fault);

// Does BS ask for samples of the moments?
bool AsksForMomentSamples(const JOB& job);

// Draws the samples when BS asks for some and there is something to compute: the matrix of MA, or
// the means and standard deviations of the continuous variables without one (with procedures in the
// run: only where the output line names MA, ME or SD). Writes the section and the files of BM, ME
// and SD, a block for each sample; the numbers of one without estimates are -999999. Returns false
// with the reason in `fault`, without a cause when the run was interrupted.
bool BootstrapMoments(ENGINERUN& run, FAULT& fault);
