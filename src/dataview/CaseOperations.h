// What the dialogs that insert, delete and sort cases and variables ask for, and what that means:
// positions, ranges and names.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "datadoc/Selections.h"
#include "vexutils/FileSort.h"

// The most cases that the file format can count.
inline constexpr std::int64_t kMostCases = 2147483647;
// The most variables that the data window numbers.
inline constexpr std::int32_t kMostVariables = 32767;

struct InsertCasesRequest {
  std::int64_t count = 1;
  bool atEnd = false;
  bool after = false;           // else before the given case
  std::int64_t caseNumber = 0;  // counted from 1; 0 where there are no cases
};

struct InsertVariablesRequest {
  std::int32_t count = 1;
  bool atEnd = false;
  bool after = false;         // else before the selected variable
  std::int32_t variable = 0;  // the selected one, counted from 0; 0 where there is none
};

enum class DeleteCasesForm { FirstAndCount, FromTo, ThroughLast };

struct DeleteCasesRequest {
  DeleteCasesForm form = DeleteCasesForm::FirstAndCount;
  std::int64_t first = 1;  // case numbers count from 1
  std::int64_t count = 1;
  std::int64_t from = 1;  // also of ThroughLast
  std::int64_t to = 1;
};

struct SortCasesRequest {
  std::int32_t key = -1;  // variable, counted from 0; negative: no sort
  std::int32_t order = kSortAscending;
};

// Before which case (counted from 0) the new ones are inserted; `cases` when they are appended.
std::int64_t InsertionCase(const InsertCasesRequest& request, std::int64_t cases);

// Before which variable (counted from 0) the new ones are inserted; `variables` for the end.
std::int32_t InsertionVariable(const InsertVariablesRequest& request, std::int32_t variables);

// The cases to delete, held to those that there are; may be empty.
CaseRange DeletionRange(const DeleteCasesRequest& request, std::int64_t cases);

// The case number with which the dialogs that insert and delete cases start: that of the current
// row (negative: none), 0 where there are no cases. Empty where there are cases but no current row:
// the command then does nothing.
std::optional<std::int64_t> StartingCase(std::int64_t currentRow, std::int64_t cases);
