// Variables and cases as people write them: "age,A1-A5", "1-20".
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "datadoc/DataSet.h"

// The variables (counted from 0) that a list of names, 1-based numbers and ranges of either names,
// separated by commas. A name (as shown, case counts) goes before a range or a number. Empty, with
// the entry that was not understood in `problem`, when there is one.
std::optional<std::vector<std::int32_t>> ParseVariableList(const TORVIKSTRUCT& data,
                                                           std::string_view list, CString& problem);

// A half-open range of cases, counted from 0.
struct CaseRange {
  std::int64_t begin = 0;
  std::int64_t end = 0;
};

// "5", "3-20" or "3-" out of `records` cases, counted from 1 in the text; what lies beyond the last
// case is cut off. Empty when the text is none of these.
std::optional<CaseRange> ParseCaseRange(std::string_view text, std::int64_t records);
