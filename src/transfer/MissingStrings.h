// The texts that stand for a missing value in a text file.
#pragma once

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
  bool HasNumber(double number) const {
    for (const double entry : numbers_) {
      if (entry == number) return true;
    }
    return false;
  }

 private:
  std::vector<std::string> entries_;
  std::vector<std::string> texts_;  // trimmed, none of them empty
  std::vector<double> numbers_;     // of those that are numbers
};

}  // namespace STUtils
