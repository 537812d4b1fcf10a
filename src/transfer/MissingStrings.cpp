#include "transfer/MissingStrings.h"

#include <algorithm>
#include <utility>

#include "host/Text.h"
#include "transfer/ConvertData.h"

namespace STUtils {

CMissingStrings::CMissingStrings(std::vector<std::string> entries) : entries_(std::move(entries)) {
  for (const std::string& entry : entries_) {
    const std::string text(Trimmed(entry));
    if (!text.empty()) texts_.push_back(text);
  }
  SetDecimalMark('.');
}

void CMissingStrings::SetDecimalMark(char mark) {
  numbers_.clear();
  for (std::string text : texts_) {
    PutPoint(mark, text);
    const auto number = ParseDataNumber(text);
    if (number && number->length == text.size()) numbers_.push_back(number->value);
  }
}

bool CMissingStrings::HasText(std::string_view trimmed) const {
  return std::any_of(texts_.begin(), texts_.end(),
                     [&](const std::string& entry) { return EqualIgnoringCase(entry, trimmed); });
}

}  // namespace STUtils
