// Variables that come and go in a description: everything that belongs to a variable moves with it,
// and the weight and group variable stay the variables that they were.
#pragma once

#include <vector>

#include "datadoc/DataSet.h"

// `count` fresh variables without names before variable `position` (counted from 0, at most the
// number of variables).
void InsertVariableRecords(TORVIKSTRUCT& data, std::int32_t position, std::int32_t count);

// Takes out the variables that are flagged (one flag a variable). A weight or group variable that
// goes leaves none.
void DeleteVariableRecords(TORVIKSTRUCT& data, const std::vector<bool>& deleted);

// The part of a deletion that CDataDoc::CheckDeletion leaves to its callers: moves the category
// slots of the variables that stay and renumbers the weight and group variable. `deleted` flags the
// variables as they were before.
void DeleteCategorySlots(TORVIKSTRUCT& data, const std::vector<bool>& deleted);
