#include "datadoc/VariableNames.h"

#include <algorithm>
#include <charconv>

#include "host/Text.h"

namespace {

bool IsDigits(std::string_view word) {
  return !word.empty() &&
         std::all_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string Key(std::string_view name) {
  return std::string(Trimmed(TextForDisplay(name)));
}

}  // namespace

CVariableNames::CVariableNames(const TORVIKSTRUCT& data) {
  for (std::int32_t i = 0; i < data.variables; ++i) {
    Add(data.variable[static_cast<std::size_t>(i)].name);
  }
}

std::int32_t CVariableNames::Add(std::string_view name) {
  byName_.emplace(Key(name), count_);
  return count_++;
}

std::optional<std::int32_t> CVariableNames::Find(std::string_view word) const {
  if (IsDigits(word)) {
    std::int32_t number = 0;
    const auto result = std::from_chars(word.data(), word.data() + word.size(), number);
    if (result.ec != std::errc() || number < 1 || number > count_) return std::nullopt;
    return number - 1;
  }
  const auto found = byName_.find(Key(word));
  if (found == byName_.end() || found->first.empty()) return std::nullopt;
  return found->second;
}

// A name may hold a hyphen itself, so every one of them is tried as the middle of a range.
std::optional<CVariableNames::Range> CVariableNames::FindRange(std::string_view word) const {
  if (const auto variable = Find(word)) return Range{*variable, *variable};
  for (std::size_t hyphen = word.find('-'); hyphen != std::string_view::npos;
       hyphen = word.find('-', hyphen + 1)) {
    const auto first = Find(word.substr(0, hyphen));
    const auto last = Find(word.substr(hyphen + 1));
    if (first && last && *first <= *last) return Range{*first, *last};
  }
  return std::nullopt;
}
