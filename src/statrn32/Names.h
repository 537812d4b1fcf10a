// Names of variables as the formats allow them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace statrn32 {

// Letters and digits are always allowed, a digit not as the first character.
struct NAME_RULES {
  std::size_t bytes;                           // longest name
  std::string_view alsoFirst;                  // further characters allowed in the first place
  std::string_view alsoLater;                  // and behind it
  bool plain;                                  // only ASCII
  bool upper;                                  // upper case
  bool caseMatters;                            // "a" and "A" are two names
  std::span<const std::string_view> reserved;  // in upper case where the case does not matter
  bool strNumbers = false;                     // "str1", "str2", ... are words of the program
};

// Characters outside ASCII as the ASCII letter that comes nearest, or "?".
std::string ToAscii(std::string_view utf8);

// Makes `names` legal and different from each other. Returns the (old, new) pairs of those that
// were changed.
std::vector<std::pair<std::string, std::string>> MakeLegalNames(const NAME_RULES& rules,
                                                                std::vector<std::string>* names);

}  // namespace statrn32
