#include "datadoc/DataSet.h"

#include <algorithm>

namespace {

constexpr std::int32_t kCapacityStep = 8;
constexpr std::int32_t kSmallestToShrink = 17;

}  // namespace

void TORVIKSTRUCT::ResizeArrays(std::size_t capacity) {
  variable.resize(capacity);
  categoryLabels.resize(capacity * kCategorySlots);
  categoryValues.resize(capacity * kCategorySlots);
}

std::int32_t CapacityFor(std::int32_t variables, std::int32_t capacity) {
  while (capacity < variables) capacity += kCapacityStep;
  while (capacity >= kSmallestToShrink && capacity - variables > kCapacityStep) {
    capacity -= kCapacityStep;
  }
  return capacity;
}

void CopyVariable(const TORVIKSTRUCT& from, TORVIKSTRUCT& to, std::size_t index) {
  const VARSTRUCT& source = from.variable[index];
  VARSTRUCT& target = to.variable[index];
  target.name = source.name;
  target.type = source.type;
  target.missing = source.missing;
  target.categories = source.categories;
  const auto inUse = static_cast<std::size_t>(
      std::clamp<std::int32_t>(source.categories, 0, static_cast<std::int32_t>(kCategorySlots)));
  for (std::size_t slot = index * kCategorySlots; slot < index * kCategorySlots + inUse; ++slot) {
    to.categoryLabels[slot] = from.categoryLabels[slot];
    to.categoryValues[slot] = from.categoryValues[slot];
  }
}
