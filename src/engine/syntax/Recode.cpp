#include "engine/syntax/Recode.h"

#include <limits>
#include <optional>

#include "host/Numbers.h"
#include "host/Text.h"

namespace {

constexpr std::string_view kOld = "OLD=";
constexpr std::string_view kNew = "NEW=";

// A number or one of the words for the extremes at the front of `text`, which is shortened by it.
std::optional<double> TakeBound(std::string_view& text) {
  if (BeginsWith(text, "LO") || BeginsWith(text, "HI")) {
    const double extreme = std::numeric_limits<double>::infinity();
    const double bound = BeginsWith(text, "LO") ? -extreme : extreme;
    text.remove_prefix(2);
    return bound;
  }
  const auto number = ParseNumber(text);
  if (!number || text.starts_with(' ')) return std::nullopt;
  text.remove_prefix(number->length);
  return number->value;
}

bool ParseRange(std::string_view& text, RECODE::RANGE& range) {
  const auto low = TakeBound(text);
  if (!low) return false;
  range = {*low, *low, true};
  if (!text.starts_with('-')) return true;
  text.remove_prefix(1);
  const auto high = TakeBound(text);
  if (!high || *high < *low) return false;
  range = {*low, *high, false};
  return true;
}

bool ParseOld(std::string_view text, std::vector<RECODE::RANGE>& ranges) {
  for (;;) {
    RECODE::RANGE range;
    if (!ParseRange(text, range)) return false;
    ranges.push_back(range);
    if (text.empty()) return true;
    if (text.front() != ',') return false;
    text.remove_prefix(1);
  }
}

bool ParsePair(CWords& words, RECODE::PAIR& pair) {
  if (!BeginsWith(words.Peek(), kOld)) return words.Expected("OLD=values after the variables");
  if (!ParseOld(words.Peek().substr(kOld.size()), pair.old)) {
    return words.Expected(
        "OLD= with numbers and ranges (low-high) between commas, LO and HI for "
        "the extremes");
  }
  words.Skip();
  constexpr double kLargest = std::numeric_limits<double>::max();
  if (!words.TakeReal(kNew, -kLargest, kLargest, pair.value)) {
    return words.Expected("NEW=number after OLD=");
  }
  return words.Ok();
}

}  // namespace

std::optional<std::size_t> RECODE::PairOf(double cell, bool missing) const {
  for (std::size_t pair = 0; pair < pairs.size(); ++pair) {
    for (const RANGE& range : pairs[pair].old) {
      const bool fits =
          range.single ? cell == range.low : !missing && range.low <= cell && cell <= range.high;
      if (fits) return pair;
    }
  }
  return std::nullopt;
}

double RECODE::NewValue(double cell, bool missing) const {
  const auto pair = PairOf(cell, missing);
  return pair ? pairs[*pair].value : cell;
}

bool ParseRecode(CWords& words, RECODE& recode) {
  recode.variables = words.TakeVariables("variables to recode", {kOld, kNew});
  return words.Ok() && ParseRecodePairs(words, recode);
}

bool ParseRecodePairs(CWords& words, RECODE& recode) {
  do {
    RECODE::PAIR pair;
    if (!ParsePair(words, pair)) return false;
    recode.pairs.push_back(std::move(pair));
  } while (!words.AtEnd());
  return words.Ok();
}
