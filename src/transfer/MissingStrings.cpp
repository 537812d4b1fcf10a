#include "transfer/MissingStrings.h"

#include <algorithm>
#include <utility>

#include "host/Text.h"
#include "transfer/ConvertData.h"

namespace STUtils {
namespace {

constexpr bool IsLetter(char c) {
  return (c | 0x20) >= 'a' && (c | 0x20) <= 'z';
}

// Of characters that are neither part of a number that is whole nor can stand between fields.
bool IsShort(std::string_view text) {
  return text.size() <= sizeof(std::uint64_t) && std::all_of(text.begin(), text.end(), [](char c) {
           return IsLetter(c) || c == '.' || c == '-' || c == '+';
         });
}

}  // namespace

CMissingStrings::ShortText::ShortText(std::string_view entry) : length(entry.size()) {
  for (std::size_t i = 0; i < entry.size(); ++i) {
    const std::size_t shift = 8 * i;
    const std::uint64_t caseBit = IsLetter(entry[i]) ? 0x20 : 0;
    mask |= std::uint64_t{0xFF} << shift;
    lower |= caseBit << shift;
    text |= (static_cast<unsigned char>(entry[i]) | caseBit) << shift;
  }
}

CMissingStrings::CMissingStrings(std::vector<std::string> entries) : entries_(std::move(entries)) {
  for (const std::string& entry : entries_) {
    const std::string text(Trimmed(entry));
    if (text.empty()) continue;
    texts_.push_back(text);
    if (IsShort(text)) short_.emplace_back(text);
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
