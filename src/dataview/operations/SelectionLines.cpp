#include "dataview/operations/SelectionLines.h"

#include <algorithm>
#include <array>

#include "datadoc/CaseSelection.h"
#include "host/Text.h"
#include "syntax/procedures/VariableNumbers.h"

SelectionRule SelectByCaseNumber(CaseNumberRule rule, const CString& value) {
  constexpr std::array<const char*, 4> kDisplay = {"odd ", "even ", "less than ", "greater than "};
  constexpr std::array<const char*, 4> kSyntax = {"ODD ", "EVEN ", "< ", "> "};
  const auto index = static_cast<std::size_t>(rule);
  const bool hasValue = rule == CaseNumberRule::LessThan || rule == CaseNumberRule::GreaterThan;
  const CString operand = hasValue ? value : CString();
  return {CString("Select those cases number that are ") + kDisplay[index] + operand,
          CString("SC CASE ") + kSyntax[index] + operand};
}

SelectionRule SelectByValue(const ValueRule& rule, const TORVIKSTRUCT& data) {
  constexpr std::array<const char*, 3> kDisplay = {"less than ", "greater than ", "equal to "};
  constexpr std::array<const char*, 3> kSyntax = {"< ", "> ", "= "};
  const auto operation = static_cast<std::size_t>(rule.operation);
  SelectionRule lines;
  lines.display = CString("Select those cases with value ") + kDisplay[operation] + rule.value;
  if (rule.remove) lines.display += " and delete";
  lines.display += ": ";
  lines.syntax = rule.remove ? "SD " : "SC ";
  for (const std::int32_t variable : rule.variables) {
    lines.display += CString(Trimmed(data.variable[static_cast<std::size_t>(variable)].name)) + " ";
    lines.syntax += std::to_string(variable + 1) + " ";
  }
  lines.syntax += kSyntax[operation] + rule.value;
  return lines;
}

CString ProblemOfRules(const TORVIKSTRUCT& data, const CStringList& syntaxLines) {
  const CVariableNames names(data);
  CCaseSelection selection;
  CString problem;
  for (const CString& line : syntaxLines) {
    if (!selection.AddLine(data, names, line, problem)) return problem;
  }
  if (selection.DropsAllVariables()) return "At least one variable must stay.";
  return {};
}

CString DescribeSelection(const SelectionEffect& effect, const TORVIKSTRUCT& data) {
  constexpr std::size_t kMostNames = 12;
  CString text = std::to_string(effect.removedCases) + " of " + std::to_string(effect.cases) +
                 " cases are removed from the data set";
  if (!effect.variables.empty()) {
    text += ", and so are these variables:\n";
    for (std::size_t i = 0; i < std::min(effect.variables.size(), kMostNames); ++i) {
      const auto variable = static_cast<std::size_t>(effect.variables[i]);
      text += (i == 0 ? "" : ", ") + CString(Trimmed(data.variable[variable].name));
    }
    if (effect.variables.size() > kMostNames) {
      text += " and " + std::to_string(effect.variables.size() - kMostNames) + " more";
    }
  }
  return text + ".\nThe file stays as it is until you save, and Undo takes this back. Go on?";
}

CStringList SelectionJobLines(const CStringList& rules,
                              const std::vector<std::int32_t>& variables) {
  CStringList lines = rules;
  std::vector<std::int32_t> numbers;
  for (const std::int32_t variable : variables) numbers.push_back(variable + 1);
  CString selection;
  AppendSelectionLines(numbers, "SE ", selection);
  if (!selection.empty()) lines.push_back(selection);
  lines.push_back("OU XM");
  return lines;
}
