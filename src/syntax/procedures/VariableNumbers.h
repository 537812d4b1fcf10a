// Variables as a syntax line names them: chosen by name, written by number.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "datadoc/DataSet.h"

// Names of variables as they stand in the data set, in the order in which they were chosen.
using NameList = std::vector<CString>;

// The longest line that a selection is broken into.
inline constexpr std::size_t kSelectionLineBytes = 78;

// The number of the first variable of exactly this name, counted from 1; the number of variables
// plus one when there is none.
std::int32_t VariableNumber(const TORVIKSTRUCT& data, std::string_view name);

// The same for many names: the data set is gone through once. It must outlive this.
class CVariableNumbers {
 public:
  explicit CVariableNumbers(const TORVIKSTRUCT& data);

  std::int32_t Of(std::string_view name) const;
  bool Has(std::string_view name) const { return Of(name) <= variables_; }
  // Does more than one variable have this name?
  bool IsShared(std::string_view name) const { return shared_.count(name) > 0; }

 private:
  std::unordered_map<std::string_view, std::int32_t> first_;
  std::unordered_set<std::string_view> shared_;
  std::int32_t variables_;
};

std::vector<std::int32_t> VariableNumbers(const TORVIKSTRUCT& data, const NameList& names);

// Each number with a blank behind it: "1 2 5 ".
CString NumbersWithBlanks(const TORVIKSTRUCT& data, const NameList& names);
// With blanks between them: "1 2 5".
CString NumbersBetweenBlanks(const TORVIKSTRUCT& data, const NameList& names);

// Appends lines that begin with `command` ("SE ") and hold the numbers. A line is closed before it
// would get longer than kSelectionLineBytes; a line end is put between what `text` holds and a line
// that is closed on the way. The last line gets one in any case: a selection that fits into one
// line has an empty line before it. Nothing is appended for no names.
void AppendSelectionLines(const TORVIKSTRUCT& data, const NameList& names, const CString& command,
                          CString& text);
// The same for variables that are known by number already.
void AppendSelectionLines(const std::vector<std::int32_t>& numbers, const CString& command,
                          CString& text);

// The name for people to read.
CString ShownName(const CString& name);
