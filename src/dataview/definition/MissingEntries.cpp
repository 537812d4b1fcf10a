#include "dataview/definition/MissingEntries.h"

#include "dataview/definition/LeadingNumber.h"
#include "host/Numbers.h"

namespace {

constexpr int kDecimals = 6;

// The first five of either kind of definition.
template <typename Definition>
MissingTexts TextsOf(const Definition& definition) {
  MissingTexts texts;
  const bool hasRange = definition[kRangeLow] != kNotSet && definition[kRangeHigh] != kNotSet;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const bool shown = i < kMissingValues ? definition[i] != kNotSet : hasRange;
    if (shown) texts[i] = FormatFixed(definition[i], 0, kDecimals);
  }
  return texts;
}

double ValueOf(const CString& text, const CString& textBefore, double valueBefore) {
  if (text.empty()) return kNotSet;
  return text == textBefore ? valueBefore : LeadingNumber(text);
}

template <typename Definition>
void Take(const MissingTexts& texts, Definition& definition) {
  const MissingTexts before = TextsOf(definition);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    definition[i] = ValueOf(texts[i], before[i], definition[i]);
  }
  if (definition[kRangeLow] == kNotSet || definition[kRangeHigh] == kNotSet) {
    definition[kRangeLow] = definition[kRangeHigh] = kNotSet;
  }
}

}  // namespace

MissingEntries OpenMissingEntries(const VARSTRUCT& variable, const TORVIKSTRUCT& data) {
  MissingEntries entries;
  entries.noMissing = variable.missing == kNoMissing;
  entries.variable = TextsOf(variable.missing);
  entries.global = TextsOf(data.missing);
  entries.deletion = data.deletion;
  return entries;
}

void TakeMissingEntries(const MissingEntries& entries, VARSTRUCT& variable, TORVIKSTRUCT& data) {
  if (entries.noMissing) {
    variable.missing = kNoMissing;
  } else {
    Take(entries.variable, variable.missing);
  }
  Take(entries.global, data.missing);
  data.deletion = entries.deletion == kListwise ? kListwise : kPairwise;
}
