// How what was set for one variable in the definition dialogs reaches others. Variables count from
// 0; `source` is the first selected one, `selected` are all of them in ascending order.
#pragma once

#include <cstdint>
#include <vector>

#include "datadoc/DataSet.h"

// The type goes to every other variable with "Apply to all", else to the other selected ones.
void ApplyType(TORVIKSTRUCT& copy, const std::vector<std::int32_t>& selected, bool all);

// Missing values and categories go to the other selected variables. With "Apply to all" the list
// of targets becomes all variables in order, but their number stays that of the selected ones: only
// so many from the first variable on receive them. This limit is on purpose.
void ApplyMissing(TORVIKSTRUCT& copy, const std::vector<std::int32_t>& selected, bool all);
void ApplyCategories(TORVIKSTRUCT& copy, const std::vector<std::int32_t>& selected, bool all);
