#include "engine/stats/Status.h"

namespace stats {

const char* StatusText(EStatus status) {
  switch (status) {
    case EStatus::Ok:
      return "";
    case EStatus::NoCases:
      return "there are no cases without missing values";
    case EStatus::TooFewCases:
      return "there are too few cases";
    case EStatus::ZeroWeights:
      return "the weights add up to zero";
    case EStatus::NotFinite:
      return "a value, a weight or a result is not a finite number";
    case EStatus::Constant:
      return "the variable has one value only";
    case EStatus::OneCategory:
      return "all cases are in one category";
    case EStatus::Boundary:
      return "the estimate lies on the boundary";
    case EStatus::NotConverged:
      return "the iterations did not converge";
    case EStatus::NotPositiveDefinite:
      return "the matrix is not positive definite";
    case EStatus::BadArgument:
      return "the tables do not fit together";
  }
  return "";
}

}  // namespace stats
