// The case selection of a syntax: "SC" lines keep cases, "SD" lines remove cases and then drop the
// variables that they name. The engine and the data view apply the same lines with this class.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "datadoc/Missing.h"
#include "datadoc/VariableNames.h"

// All lines apply together, to the data as they were before any of them: case numbers are those of
// the whole data set, and a case that an "SC" line does not keep is gone even when an "SD" line
// says nothing about it. A condition on variables holds when it holds on every one of them. "="
// compares the stored value, so that a missing-value code can be selected; "<" and ">" never hold
// on a missing cell.
//
// The data set that the lines were read against must outlive the selection. Reading is not
// thread-safe, asking is.
class CCaseSelection {
 public:
  // Is the first word of this line SC or SD, in any case?
  static bool IsSelectionLine(std::string_view line);

  // Adds a line ("SC CASE ODD", "SC 3 5 < 2", "SD A1-A3 = 9"). Returns false, with what was
  // expected and what was found instead in `problem`, when it is none, and changes nothing then.
  bool AddLine(const TORVIKSTRUCT& data, const CVariableNames& names, std::string_view line,
               CString& problem);

  bool IsEmpty() const { return rules_.empty(); }

  // Does the case stay? `row` holds all variables of the data set, `caseNumber` counts from 1.
  bool Keeps(const double* row, std::int64_t caseNumber) const;

  // The variables that "SD" lines drop: 1-based numbers in ascending order, as a deletion takes
  // them.
  std::vector<std::int32_t> DroppedVariables() const;
  // Is this variable, counted from 0, one of them?
  bool Drops(std::int32_t variable) const;
  // Would no variable be left? Callers refuse that.
  bool DropsAllVariables() const;

 private:
  enum class Condition { Odd, Even, Below, Above, Equal };
  struct Variable {
    std::int32_t index = 0;  // counted from 0
    CMissingTest missing;
  };
  struct Rule {
    bool removes = false;
    bool ofCaseNumber = false;
    Condition condition = Condition::Equal;
    double value = 0;
    std::vector<Variable> variables;
  };

  static bool ReadCaseRule(std::string_view text, Rule& rule, CString& problem);
  static bool ReadValueRule(const TORVIKSTRUCT& data, const CVariableNames& names,
                            std::string_view text, Rule& rule, CString& problem);
  static bool Holds(const Rule& rule, const double* row, std::int64_t caseNumber);

  std::vector<Rule> rules_;
  std::vector<bool> dropped_;  // by variable; empty until an "SD" line was read
};
