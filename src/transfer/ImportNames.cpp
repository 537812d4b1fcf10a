#include "transfer/ImportNames.h"

#include <cmath>
#include <limits>
#include <unordered_map>
#include <unordered_set>

#include "datadoc/VsfLayout.h"
#include "host/Text.h"

namespace {

constexpr std::size_t kNameBytes = 16;

bool IsCategoryValue(const STUtils::basic_value_label_t<char>& label) {
  constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
  constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
  return label.text.empty() && label.tag == 0 && label.value == std::trunc(label.value) &&
         label.value >= kLowest && label.value <= kHighest;
}

}  // namespace

std::vector<CString> ImportedNames(const std::vector<STUtils::variable_info_t>& variables) {
  std::vector<CString> names;
  for (const auto& variable : variables) {
    if (variable.selected) names.push_back(CutText(TextForFile(variable.name), kNameBytes));
  }
  return names;
}

std::vector<CString> RepeatedNames(const std::vector<CString>& names) {
  std::unordered_map<CString, int> count;
  std::vector<CString> repeated;
  for (const CString& name : names) {
    if (++count[name] == 2) repeated.push_back(name);
  }
  return repeated;
}

std::vector<CString> UniqueNames(const std::vector<CString>& names) {
  std::unordered_set<CString> taken(names.begin(), names.end());
  std::unordered_set<CString> used;
  std::unordered_map<CString, int> next;
  std::vector<CString> unique;
  for (const CString& name : names) {
    CString candidate = name;
    while ((candidate != name && taken.contains(candidate)) || !used.insert(candidate).second) {
      const CString suffix = '_' + std::to_string(++next[name] + 1);
      candidate = CutText(name, kNameBytes - suffix.size()) + suffix;
    }
    unique.push_back(candidate);
  }
  return unique;
}

std::size_t LabelsWithoutRoom(const STUtils::variable_info_t& source) {
  std::size_t whole = 0;
  std::size_t without = 0;
  for (const auto& label : source.valueLabels) {
    const bool place = IsCategoryValue(label) && ++whole <= kCategorySlots;
    if (!place || TextForFile(label.label).size() > kVsfLabelBytes) ++without;
  }
  return without;
}

void KeepLabels(const STUtils::variable_info_t& source, const CString& storedName,
                TORVIKSTRUCT& block) {
  VARSTRUCT& variable = block.variable.front();
  const CString fullName = TextForFile(source.name);
  variable.description =
      CutText(fullName == storedName ? TextForFile(source.label) : fullName, kVsfDescriptionBytes);
  std::size_t slot = 0;
  for (const auto& label : source.valueLabels) {
    if (slot == kCategorySlots || !IsCategoryValue(label)) continue;
    block.categoryValues[slot] = static_cast<std::int32_t>(label.value);
    block.categoryLabels[slot] = CutText(TextForFile(label.label), kVsfLabelBytes);
    ++slot;
  }
  variable.categories = static_cast<std::int32_t>(slot);
}
