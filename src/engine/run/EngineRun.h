// What the procedures of a run work with.
#pragma once

#include <limits>
#include <optional>
#include <vector>

#include "engine/data/CaseSource.h"
#include "engine/parallel/Ranks.h"
#include "engine/report/Report.h"
#include "engine/run/OutputFiles.h"
#include "engine/run/Progress.h"

inline constexpr double kLargeSample = std::numeric_limits<double>::infinity();

// What a procedure estimated in one equation, for those who run it on many data sets.
struct ESTIMATES {
  struct PARAMETER {
    CString name;
    double value = 0;
    double error = 0;  // standard error; 0: the parameter is fixed; NaN: it has none
  };
  CString title;             // "Regression of y on x1 and x2"
  double n = 0;              // sum of weights of the cases
  double df = kLargeSample;  // of the residuals, where errors have t distributions
  std::vector<PARAMETER> parameters;
  // Above 0: loadings, row after row with so many columns, whose order and signs mean nothing.
  std::size_t factors = 0;
  CString method;  // what the output says of model and method
  // Correlations of the factors of the loadings before them, below the diagonal, by rows.
  bool ofFactors = false;
};

// What bootstrapping tells a procedure, and a procedure bootstrapping.
struct SAMPLING {
  // A sample: only its estimates are wanted. What takes time and is only printed is left out.
  bool isSample = false;
  // What the data decide once and the samples keep to, such as a number of factors.
  std::optional<std::int64_t> settled;
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
  // Null, or what a run of bootstrapping knows.
  SAMPLING* sampling = nullptr;
  // The processes that share the work of this run; null when it is one's own.
  CRanks* ranks = nullptr;
  std::size_t dataSet = 0;  // of the job's completed data sets, counted from 0

  // One pass over the cases with progress and interruption. Returns false with the reason in
  // `fault`; without a cause when the run was interrupted.
  bool Pass(CCaseSource& cases, const std::function<void(const CASEBLOCK&)>& work, FAULT& fault);
  // The same over pieces, several at the same time (CCaseSource::ForEachPiece).
  bool PassInPieces(CCaseSource& cases, const CCaseSource::PieceWork& work, FAULT& fault);

  // Whose share of the work this process computes, and of how many.
  int Part() const { return ranks == nullptr ? 0 : ranks->Rank(); }
  int Parts() const { return ranks == nullptr ? 1 : ranks->Count(); }
  // Gives this process's results to all and takes theirs. Returns false with the reason in `fault`,
  // without a cause when the run was interrupted.
  bool Exchange(const std::string& mine, std::vector<std::string>& all, FAULT& fault);

 private:
  CCaseSource::Progress Teller();
};
