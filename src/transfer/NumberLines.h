// Records of nothing but numbers as the lines of a text file: what an export writes millions of.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace STUtils {

// Puts together the same text as a record's values one by one would give (see TextExport.h). Whole
// numbers of up to three digits, as most answers are, are taken with their separator from a table.
class CNumberLines {
 public:
  CNumberLines(std::size_t variables, char separator);

  // The lines of whole records, `variables` cells each; NaN stands for a missing value and leaves
  // its field empty. Valid until the next call. Memory grows with the largest number of cells.
  std::string_view Text(std::span<const double> cells);

 private:
  static constexpr std::size_t kTexts = 1000;

  char* Put(double cell, char* out) const;

  std::size_t variables_;
  char separator_;
  std::array<std::uint64_t, kTexts> texts_{};  // with the separator; the last byte is the length
  std::vector<char> buffer_;
};

}  // namespace STUtils
