// What the page that selects cases makes of a rule: a line to show and a line of syntax.
#pragma once

#include <cstdint>
#include <vector>

#include "datadoc/DataSet.h"
#include "dataview/DataView.h"

enum class CaseNumberRule { Odd, Even, LessThan, GreaterThan };
enum class ValueOperator { LessThan, GreaterThan, EqualTo };

struct SelectionRule {
  CString display;
  CString syntax;
};

// Keeps cases by their number; `value` is the text as typed, of the last two rules only.
SelectionRule SelectByCaseNumber(CaseNumberRule rule, const CString& value);

// Keeps (or, with `remove`, removes) the cases by the values of variables, counted from 0.
struct ValueRule {
  ValueOperator operation = ValueOperator::LessThan;
  CString value;  // as typed
  bool remove = false;
  std::vector<std::int32_t> variables;
};
SelectionRule SelectByValue(const ValueRule& rule, const TORVIKSTRUCT& data);

// What keeps rules from being used: a value that is no number, no variable, or no variable left.
// Empty when they can be used.
CString ProblemOfRules(const TORVIKSTRUCT& data, const CStringList& syntaxLines);

// What a selection would do to the data set, as a question to the user.
CString DescribeSelection(const SelectionEffect& effect, const TORVIKSTRUCT& data);

// The lines of a selection's run: the rules, then the variables (counted from 0; none: all of them)
// of the run, then the output form.
CStringList SelectionJobLines(const CStringList& rules, const std::vector<std::int32_t>& variables);
