#include "engine/syntax/Words.h"

#include <algorithm>
#include <charconv>

#include "host/Numbers.h"
#include "host/Text.h"

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";
constexpr std::size_t kLongestShown = 40;

std::vector<std::string_view> Split(std::string_view text, std::string_view single) {
  std::vector<std::string_view> words;
  std::size_t at = text.find_first_not_of(kBlanks);
  while (at < text.size()) {
    std::size_t end = at + 1;
    if (single.find(text[at]) == std::string_view::npos) {
      while (end < text.size() && kBlanks.find(text[end]) == std::string_view::npos &&
             single.find(text[end]) == std::string_view::npos) {
        ++end;
      }
    }
    words.push_back(text.substr(at, end - at));
    at = text.find_first_not_of(kBlanks, end);
  }
  return words;
}

bool IsStop(std::string_view word, std::initializer_list<std::string_view> stops) {
  return std::any_of(stops.begin(), stops.end(), [word](std::string_view stop) {
    return stop.ends_with('=') ? BeginsWith(word, stop) : EqualIgnoringCase(word, stop);
  });
}

}  // namespace

bool BeginsWith(std::string_view word, std::string_view prefix) {
  return EqualIgnoringCase(word.substr(0, prefix.size()), prefix);
}

CString Shown(std::string_view word) {
  if (word.empty()) return "the end of the line";
  CString text = TextForDisplay(word);
  if (text.size() > kLongestShown) text = CutText(text, kLongestShown) + "...";
  return '"' + text + '"';
}

CWords::CWords(const SyntaxLine& line, const CVariableNames& names, std::string_view single)
    : line_(line), names_(names) {
  const std::string_view text = Trimmed(line.text);
  words_ = Split(text.substr(FirstWord(text).size()), single);
}

bool CWords::Fail(CString cause, CString remedy) {
  if (!bad_)
    fault_ = {line_.number, CString(Trimmed(line_.text)), std::move(cause), std::move(remedy)};
  bad_ = true;
  return false;
}

bool CWords::Expected(std::string_view what) {
  return Fail("expected " + CString(what) + ", found " + Shown(Peek()));
}

bool CWords::TakeKeyword(std::string_view keyword) {
  if (AtEnd() || !EqualIgnoringCase(Peek(), keyword)) return false;
  ++next_;
  return true;
}

bool CWords::TakeFlag(std::string_view keyword, bool& flag) {
  const bool taken = TakeKeyword(keyword);
  flag = flag || taken;
  return taken;
}

// What stands behind "KEY=", or in the next word when nothing does.
std::string_view CWords::TakeValue(std::string_view key) {
  std::string_view value = words_[next_++].substr(key.size());
  if (value.empty() && !AtEnd()) value = words_[next_++];
  return value;
}

bool CWords::TakeWhole(std::string_view key, std::int64_t low, std::int64_t high,
                       std::int64_t& value) {
  if (AtEnd() || !BeginsWith(Peek(), key)) return false;
  const std::string_view text = TakeValue(key);
  std::int64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec == std::errc() && result.ptr == text.data() + text.size() && number >= low &&
      number <= high) {
    value = number;
    return true;
  }
  Fail("expected a whole number from " + std::to_string(low) + " to " + std::to_string(high) +
       " after " + CString(key) + ", found " + Shown(text));
  return true;
}

bool CWords::TakeReal(std::string_view key, double low, double high, double& value) {
  if (AtEnd() || !BeginsWith(Peek(), key)) return false;
  const std::string_view text = TakeValue(key);
  const auto number = ParseNumber(text);
  if (number && number->length == text.size() && number->value >= low && number->value <= high) {
    value = number->value;
    return true;
  }
  Fail("expected a number from " + FormatShortest(low) + " to " + FormatShortest(high) + " after " +
       CString(key) + ", found " + Shown(text));
  return true;
}

std::vector<std::int32_t> CWords::TakeVariables(std::string_view what,
                                                std::initializer_list<std::string_view> stops,
                                                std::size_t fewest) {
  std::vector<std::int32_t> list;
  std::vector<bool> named(static_cast<std::size_t>(names_.Count()), false);
  while (!AtEnd() && !IsStop(Peek(), stops)) {
    const auto range = names_.FindRange(Peek());
    if (!range) {
      Fail("there is no variable " + Shown(Peek()) + " in the data (" + CString(what) + ")",
           "Give variables by their names, by their numbers from 1 to " +
               std::to_string(names_.Count()) + ", or as ranges of these.");
      return {};
    }
    for (std::int32_t i = range->first; i <= range->last; ++i) {
      if (named[static_cast<std::size_t>(i)]) {
        const bool single = range->first == range->last;
        Fail("a variable is named twice (" + CString(what) + "): " + Shown(Peek()) +
                 (single ? CString() : " has variable number " + std::to_string(i + 1) + " again"),
             "Name each variable once.");
        return {};
      }
      named[static_cast<std::size_t>(i)] = true;
      list.push_back(i);
    }
    ++next_;
  }
  if (Ok() && list.size() < fewest) {
    Expected(fewest == 1 ? CString(what) : CString(what) + ", at least " + std::to_string(fewest));
  }
  return list;
}

std::int32_t CWords::TakeVariable(std::string_view what) {
  if (!AtEnd()) {
    if (const auto variable = names_.Find(Peek())) {
      ++next_;
      return *variable;
    }
  }
  Expected(what);
  return 0;
}

bool CWords::TakeEnd(std::string_view what) {
  if (!Ok()) return false;
  return AtEnd() || Expected(what);
}
