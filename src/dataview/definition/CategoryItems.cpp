#include "dataview/definition/CategoryItems.h"

#include <algorithm>

#include "dataview/definition/LeadingNumber.h"
#include "host/Text.h"

namespace {

constexpr std::size_t kLabelBytes = 8;  // that the file keeps

std::size_t SlotOf(std::int32_t variable, std::size_t category) {
  return static_cast<std::size_t>(variable) * kCategorySlots + category;
}

std::size_t CategoriesInUse(const TORVIKSTRUCT& data, std::int32_t variable) {
  const std::int32_t count = data.variable[static_cast<std::size_t>(variable)].categories;
  return std::min(static_cast<std::size_t>(std::max(count, 0)), kCategorySlots);
}

}  // namespace

std::vector<CString> CategoryItems(const TORVIKSTRUCT& data, std::int32_t variable) {
  std::vector<CString> items;
  for (std::size_t k = 0; k < CategoriesInUse(data, variable); ++k) {
    const std::size_t slot = SlotOf(variable, k);
    items.push_back(std::to_string(data.categoryValues[slot]) + " = " + data.categoryLabels[slot]);
  }
  return items;
}

std::optional<CString> NewCategoryItem(std::string_view value, std::string_view label,
                                       CString& problem) {
  if (value.empty() || label.empty()) {
    problem = "Please enter both the label and value field!";
    return std::nullopt;
  }
  return CString(value) + " = " + CString(label);
}

bool TakeCategoryItems(const std::vector<CString>& items, TORVIKSTRUCT& data, std::int32_t variable,
                       CString& problem) {
  if (items.size() > kCategorySlots) {
    problem = "An ordinal variable cannot have more than 15 categories!";
    return false;
  }
  for (std::size_t k = 0; k < items.size(); ++k) {
    const std::size_t sign = std::min(items[k].find('='), items[k].size());
    const std::size_t label = std::min(sign + 2, items[k].size());
    data.categoryValues[SlotOf(variable, k)] = LeadingInteger(items[k].substr(0, sign));
    data.categoryLabels[SlotOf(variable, k)] = CutText(items[k].substr(label), kLabelBytes);
  }
  data.variable[static_cast<std::size_t>(variable)].categories =
      static_cast<std::int32_t>(items.size());
  return true;
}

CString CategoryLabelOf(const TORVIKSTRUCT& data, std::int32_t variable, double value) {
  for (std::size_t k = 0; k < CategoriesInUse(data, variable); ++k) {
    const std::size_t slot = SlotOf(variable, k);
    if (data.categoryValues[slot] == value) return CString(Trimmed(data.categoryLabels[slot]));
  }
  return {};
}
