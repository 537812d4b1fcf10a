// How a computation ended. Every result carries one, so that no NaN travels without a reason.
#pragma once

namespace stats {

enum class EStatus {
  Ok,
  NoCases,              // no case, or no case without a missing value
  TooFewCases,          // fewer cases than the formula needs
  ZeroWeights,          // cases are there, but their weights add up to zero
  NotFinite,            // a value or a weight is infinite, NaN where none may be, or negative
  Constant,             // the variable has one value only
  OneCategory,          // an ordinal variable has cases in one category only
  Boundary,             // the likelihood has no maximum inside the parameter space
  NotConverged,         // the iterations ended before the gradient was small enough
  NotPositiveDefinite,  // a matrix that must be positive definite is not
  BadArgument,          // shapes do not fit each other, a category code is out of range
};

// A short sentence part for reports, such as "the variable has one value only"; "" for Ok.
const char* StatusText(EStatus status);

}  // namespace stats
