// The variables of a line that completes an incomplete sample, the patterns of their missing
// values, and what EM finds out about them.
#pragma once

#include <memory>

#include "engine/procedures/ProcedureReport.h"
#include "engine/stats/IncompleteNormal.h"

struct INCOMPLETEVARIABLE {
  std::int32_t variable = 0;
  CString name;
  std::int64_t missing = 0;  // cases
  double center = 0, scale = 1;
  // Of a variable that is taken by its categories: their values, the thresholds between them and
  // the normal score of each.
  std::vector<double> categories, thresholds, scores;

  bool IsOrdinal() const { return !categories.empty(); }
  // The category of a value, counted from 0; -1 for a value that is none of them.
  int CategoryOf(double value) const;
};

class CIncompleteSample {
 public:
  CIncompleteSample(ENGINERUN& run, const PROCEDURE& procedure);

  // Reads the data. With `categories` ordinal variables are taken by their categories, else every
  // variable by its values. False with the reason in `fault`.
  bool Read(bool categories, FAULT& fault);
  // Estimates mean and covariance matrix; `WriteCases` comes before, since it may warn. False with
  // the reason in `fault`.
  bool Estimate(FAULT& fault);

  // One more pass; cells are values, and categories counted from 0 of those taken by them.
  bool Pass(const std::function<void(const stats::CaseBlock&, const std::int64_t* numbers)>& work,
            FAULT& fault);

  void WriteCases() const;    // the data section
  void WriteHistory() const;  // of EM

  const std::vector<INCOMPLETEVARIABLE>& Variables() const { return variables_; }
  // In units of (value - center) / scale, of normal scores where there are categories.
  const stats::CMissingPatterns& Patterns() const { return *patterns_; }
  const stats::IncompleteNormalResult& Result() const { return result_; }
  bool HasOrdinal() const;

 private:
  bool FindCategories(FAULT& fault);
  bool FindScales(FAULT& fault);
  bool CheckNumberOfCases(FAULT& fault) const;
  FAULT FaultOf(const INCOMPLETEVARIABLE& variable, const CString& what) const;
  FAULT FaultOfEstimation() const;
  void SetColumns();

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  CReport& report_;
  const MULTIPLEIMPUTATION& line_;
  std::vector<INCOMPLETEVARIABLE> variables_;
  std::vector<CString> warnings_;
  std::unique_ptr<stats::CMissingPatterns> patterns_;
  stats::IncompleteNormalResult result_;
};
