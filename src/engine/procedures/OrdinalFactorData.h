// The answers that an ordinal factor analysis takes, and what they show before it begins.
#pragma once

#include <memory>
#include <optional>

#include "engine/procedures/ProcedureReport.h"
#include "engine/stats/OrdinalPatterns.h"
#include "engine/stats/Polychoric.h"

// The variables of the SE lines, which are ordinal and have answers in two categories or more. All
// cases with an answer to any of them are used, whatever the data set says of missing values.
class COrdinalFactorData {
 public:
  COrdinalFactorData(ENGINERUN& run, const PROCEDURE& procedure)
      : run_(run), procedure_(procedure) {}

  // Two passes over the cases. False with the reason in `fault`.
  bool Read(FAULT& fault);
  // The section about the data.
  void Write() const;

  const SCREENVARIABLES& Variables() const { return variables_; }
  const std::vector<CString>& Names() const { return names_; }
  const std::shared_ptr<stats::COrdinalPatterns>& Patterns() const { return patterns_; }
  const stats::CPairTables& Tables() const { return *tables_; }
  const stats::PolychoricMatrix& Polychoric() const { return polychoric_; }

 private:
  bool Find(FAULT& fault);
  bool CheckVariables(FAULT& fault) const;
  bool CheckPairs(FAULT& fault) const;
  FAULT Fault(CString cause, CString remedy) const {
    return ProcedureFault(procedure_, std::move(cause), std::move(remedy));
  }

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  SCREENVARIABLES variables_;
  std::vector<CString> names_, warnings_;
  std::shared_ptr<stats::COrdinalPatterns> patterns_;
  std::optional<stats::CPairTables> tables_;
  stats::PolychoricMatrix polychoric_;
};
