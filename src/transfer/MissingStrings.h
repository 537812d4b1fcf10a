// The texts that stand for a missing value in a text file.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace STUtils {

// Blanks around an entry and the case of letters do not count; an entry that is a number stands for
// every field that is equal to it as a number, with the decimal mark of the file. Prepared once,
// asked for every field.
class CMissingStrings {
 public:
  CMissingStrings() : CMissingStrings({"NA", "NIL"}) {}
  explicit CMissingStrings(std::vector<std::string> entries);

  void SetDecimalMark(char mark);

  const std::vector<std::string>& Entries() const { return entries_; }  // as given

  bool HasNumbers() const { return !numbers_.empty(); }
  bool HasText(std::string_view trimmed) const;
  // Is one of the entries at `at`, where eight characters can be read? Returns how long it is, 0
  // where none is. Looks only for those without a digit that are short, and not at what is behind.
  std::size_t ShortTextAt(const char* at) const {
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    for (const ShortText& entry : short_) {
      if (((word & entry.mask) | entry.lower) == entry.text) return entry.length;
    }
    return 0;
  }
  bool HasNumber(double number) const {
    for (const double entry : numbers_) {
      if (entry == number) return true;
    }
    return false;
  }

 private:
  // Up to eight characters as a word, the first in the lowest byte.
  struct ShortText {
    explicit ShortText(std::string_view entry);
    std::uint64_t text = 0;   // in lower case
    std::uint64_t mask = 0;   // of all characters
    std::uint64_t lower = 0;  // what makes letters lower case
    std::size_t length = 0;
  };

  std::vector<std::string> entries_;
  std::vector<std::string> texts_;  // trimmed, none of them empty
  std::vector<double> numbers_;     // of those that are numbers
  std::vector<ShortText> short_;    // of those that ShortTextAt looks for
};

}  // namespace STUtils
