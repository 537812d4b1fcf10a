// The list of the dialog "Category Labels for ...": one text a category, "value = label".
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "datadoc/DataSet.h"

inline constexpr int kCategoryValueCharacters = 7;  // what the two fields take
inline constexpr int kCategoryLabelCharacters = 4;

// The categories in use of a variable, counted from 0.
std::vector<CString> CategoryItems(const TORVIKSTRUCT& data, std::int32_t variable);

// The item that "Add" appends. Empty, with the message in `problem`, when a field is empty.
std::optional<CString> NewCategoryItem(std::string_view value, std::string_view label,
                                       CString& problem);

// Replaces the categories of a variable by what the items say. False, with the message in
// `problem`, and nothing changes, when there are more than 15.
bool TakeCategoryItems(const std::vector<CString>& items, TORVIKSTRUCT& data, std::int32_t variable,
                       CString& problem);

// The label of a value of a variable, without blanks at its ends. Empty when it has none.
CString CategoryLabelOf(const TORVIKSTRUCT& data, std::int32_t variable, double value);
