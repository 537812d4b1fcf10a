// What the procedures of a run work with.
#pragma once

#include <limits>
#include <vector>

#include "engine/data/CaseSource.h"
#include "engine/report/Report.h"
#include "engine/run/OutputFiles.h"
#include "engine/run/Progress.h"

inline constexpr double kLargeSample = std::numeric_limits<double>::infinity();

// What a procedure estimated in one equation, for those who run it on many data sets.
struct ESTIMATES {
  struct PARAMETER {
    CString name;
    double value = 0;
    double error = 0;  // standard error; 0: the parameter is fixed
  };
  CString title;             // "Regression of y on x1 and x2"
  double n = 0;              // sum of weights of the cases
  double df = kLargeSample;  // of the residuals, where errors have t distributions
  std::vector<PARAMETER> parameters;
};

struct ENGINERUN {
  JOB& job;  // of this repetition: procedures may add to it
  const CDataFile& file;
  CCaseSource& source;
  CReport& report;
  COutputFiles& files;
  CProgress& progress;
  int threads = 0;
  std::int64_t repetition = 0;  // counted from 0
  std::uint64_t seed = 0;
  // What makes the run fail although it could go on to its end.
  std::vector<FAULT> faults;
  // Null, or where procedures put their estimates as well, an element for each equation.
  std::vector<ESTIMATES>* estimates = nullptr;

  // One pass over the cases with progress and interruption. Returns false with the reason in
  // `fault`; without a cause when the run was interrupted.
  bool Pass(CCaseSource& cases, const std::function<void(const CASEBLOCK&)>& work, FAULT& fault);
};
