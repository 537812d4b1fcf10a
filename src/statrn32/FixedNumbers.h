// Numbers in fields of so many characters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace statrn32 {

// Counts the numbers that had to be rounded.
class CFixedNumbers {
 public:
  // At least the 7 characters that a number of one digit may take.
  explicit CFixedNumbers(std::size_t characters) : characters_(characters) {}

  // Appends the shortest text that reads back equal where it fits, else as many digits as fit, at
  // the right end of a field of blanks. `number` is finite.
  void Append(double number, std::string* out);
  // Appends a sentence where any was rounded.
  void Note(std::vector<std::string>* notes) const;

 private:
  std::size_t characters_;
  std::int64_t rounded_ = 0;
};

}  // namespace statrn32
