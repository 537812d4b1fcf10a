#include "dataview/definition/ApplyToVariables.h"

#include <algorithm>
#include <numeric>

namespace {

std::vector<std::int32_t> FirstVariables(std::size_t count) {
  std::vector<std::int32_t> variables(count);
  std::iota(variables.begin(), variables.end(), 0);
  return variables;
}

// The targets of missing values and categories.
std::vector<std::int32_t> LimitedTargets(const std::vector<std::int32_t>& selected, bool all) {
  return all ? FirstVariables(selected.size()) : selected;
}

VARSTRUCT& At(TORVIKSTRUCT& copy, std::int32_t variable) {
  return copy.variable[static_cast<std::size_t>(variable)];
}

}  // namespace

void ApplyType(TORVIKSTRUCT& copy, const std::vector<std::int32_t>& selected, bool all) {
  if (selected.empty()) return;
  const std::int32_t type = At(copy, selected.front()).type;
  const auto everyone = static_cast<std::size_t>(copy.variables);
  for (const std::int32_t target : all ? FirstVariables(everyone) : selected) {
    At(copy, target).type = type;
  }
}

void ApplyMissing(TORVIKSTRUCT& copy, const std::vector<std::int32_t>& selected, bool all) {
  if (selected.empty()) return;
  const MissingDefinition missing = At(copy, selected.front()).missing;
  for (const std::int32_t target : LimitedTargets(selected, all))
    At(copy, target).missing = missing;
}

void ApplyCategories(TORVIKSTRUCT& copy, const std::vector<std::int32_t>& selected, bool all) {
  if (selected.empty()) return;
  const std::int32_t source = selected.front();
  const std::int32_t count = At(copy, source).categories;
  for (const std::int32_t target : LimitedTargets(selected, all)) {
    if (target == source) continue;
    At(copy, target).categories = count;
    const auto from = static_cast<std::ptrdiff_t>(source) * std::ptrdiff_t{kCategorySlots};
    const auto to = static_cast<std::ptrdiff_t>(target) * std::ptrdiff_t{kCategorySlots};
    std::copy_n(copy.categoryValues.begin() + from, count, copy.categoryValues.begin() + to);
    std::copy_n(copy.categoryLabels.begin() + from, count, copy.categoryLabels.begin() + to);
  }
}
