#include "datadoc/VariableEdits.h"

#include <algorithm>

namespace {

template <typename Items>
void InsertItems(Items& items, std::size_t position, std::size_t count) {
  items.insert(items.begin() + static_cast<std::ptrdiff_t>(position), count, {});
}

void MoveSlots(TORVIKSTRUCT& data, std::size_t from, std::size_t to) {
  for (std::size_t slot = 0; slot < kCategorySlots; ++slot) {
    const std::size_t target = to * kCategorySlots + slot;
    const std::size_t source = from * kCategorySlots + slot;
    data.categoryLabels[target] = std::move(data.categoryLabels[source]);
    data.categoryValues[target] = data.categoryValues[source];
  }
}

void ClearSlots(TORVIKSTRUCT& data, std::size_t index) {
  for (std::size_t slot = 0; slot < kCategorySlots; ++slot) {
    data.categoryLabels[index * kCategorySlots + slot].clear();
    data.categoryValues[index * kCategorySlots + slot] = 0;
  }
}

// The number (counted from 1) that a variable has after the deletion; 0 when it goes. Numbers that
// are none of a variable stay.
std::int32_t Renumbered(std::int32_t number, const std::vector<bool>& deleted) {
  if (number < 1 || static_cast<std::size_t>(number) > deleted.size()) return number;
  const auto at = deleted.begin() + (number - 1);
  if (*at) return 0;
  return number - static_cast<std::int32_t>(std::count(deleted.begin(), at, true));
}

}  // namespace

void InsertVariableRecords(TORVIKSTRUCT& data, std::int32_t position, std::int32_t count) {
  const auto at = static_cast<std::size_t>(position);
  const auto many = static_cast<std::size_t>(count);
  const auto moved = [&](std::int32_t number) {
    return IsVariableNumber(data, number) && number > position ? number + count : number;
  };
  data.weightVariable = moved(data.weightVariable);
  data.groupVariable = moved(data.groupVariable);
  // Slots that were kept in reserve behind the last variable must not come between.
  data.ResizeArrays(static_cast<std::size_t>(data.variables));
  InsertItems(data.variable, at, many);
  InsertItems(data.categoryLabels, at * kCategorySlots, many * kCategorySlots);
  InsertItems(data.categoryValues, at * kCategorySlots, many * kCategorySlots);
  data.variables += count;
}

void DeleteVariableRecords(TORVIKSTRUCT& data, const std::vector<bool>& deleted) {
  std::size_t kept = 0;
  for (std::size_t index = 0; index < deleted.size(); ++index) {
    if (deleted[index]) continue;
    if (kept != index) data.variable[kept] = std::move(data.variable[index]);
    ++kept;
  }
  for (std::size_t index = kept; index < deleted.size(); ++index) data.variable[index] = {};
  data.variables = static_cast<std::int32_t>(kept);
  DeleteCategorySlots(data, deleted);
}

void DeleteCategorySlots(TORVIKSTRUCT& data, const std::vector<bool>& deleted) {
  std::size_t kept = 0;
  for (std::size_t index = 0; index < deleted.size(); ++index) {
    if (deleted[index]) continue;
    if (kept != index) MoveSlots(data, index, kept);
    ++kept;
  }
  for (std::size_t index = kept; index < deleted.size(); ++index) ClearSlots(data, index);
  data.weightVariable = Renumbered(data.weightVariable, deleted);
  data.groupVariable = Renumbered(data.groupVariable, deleted);
}
