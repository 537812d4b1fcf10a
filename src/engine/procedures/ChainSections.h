// How the chains of data augmentation went: the sections of their convergence.
#pragma once

#include "engine/procedures/ImputedValues.h"

// What was drawn, the draws of means and standard deviations by variable with their potential scale
// reduction, and the numbers of a plot of the chains.
void WriteChains(ENGINERUN& run, const MULTIPLEIMPUTATION& line, const IMPUTEDVALUES& values);
