#include "syntax/procedures/VariableNumbers.h"

#include <algorithm>

#include "host/Text.h"

std::int32_t VariableNumber(const TORVIKSTRUCT& data, std::string_view name) {
  std::int32_t number = 1;
  while (number <= data.variables &&
         data.variable[static_cast<std::size_t>(number) - 1].name != name) {
    ++number;
  }
  return number;
}

CVariableNumbers::CVariableNumbers(const TORVIKSTRUCT& data) : variables_(data.variables) {
  for (std::int32_t number = 1; number <= variables_; ++number) {
    const std::string_view name = data.variable[static_cast<std::size_t>(number) - 1].name;
    if (!first_.emplace(name, number).second) shared_.insert(name);
  }
}

std::int32_t CVariableNumbers::Of(std::string_view name) const {
  const auto found = first_.find(name);
  return found == first_.end() ? variables_ + 1 : found->second;
}

std::vector<std::int32_t> VariableNumbers(const TORVIKSTRUCT& data, const NameList& names) {
  std::vector<std::int32_t> numbers;
  if (names.empty()) return numbers;
  numbers.reserve(names.size());
  const CVariableNumbers all(data);
  for (const CString& name : names) numbers.push_back(all.Of(name));
  return numbers;
}

CString NumbersWithBlanks(const TORVIKSTRUCT& data, const NameList& names) {
  CString text;
  for (const std::int32_t number : VariableNumbers(data, names)) {
    text += std::to_string(number) + ' ';
  }
  return text;
}

CString NumbersBetweenBlanks(const TORVIKSTRUCT& data, const NameList& names) {
  CString text = NumbersWithBlanks(data, names);
  if (!text.empty()) text.pop_back();
  return text;
}

void AppendSelectionLines(const TORVIKSTRUCT& data, const NameList& names, const CString& command,
                          CString& text) {
  AppendSelectionLines(VariableNumbers(data, names), command, text);
}

void AppendSelectionLines(const std::vector<std::int32_t>& numbers, const CString& command,
                          CString& text) {
  if (numbers.empty()) return;
  CString line = command;
  for (const std::int32_t number : numbers) {
    const CString word = std::to_string(number) + ' ';
    if (line.size() + word.size() > kSelectionLineBytes) {
      if (!text.empty()) text += '\n';
      text += line;
      line = command;
    }
    line += word;
  }
  (text += '\n') += line;
}

CString ShownName(const CString& name) {
  return CString(Trimmed(TextForDisplay(name)));
}
