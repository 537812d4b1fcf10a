#include "statrn32/FixedNumbers.h"

#include <array>
#include <charconv>

namespace statrn32 {

void CFixedNumbers::Append(double number, std::string* out) {
  constexpr int kMostDigits = 17;
  std::array<char, 40> text;
  char* const last = text.data() + text.size();
  char* end = std::to_chars(text.data(), last, number).ptr;
  const auto bytes = [&] { return static_cast<std::size_t>(end - text.data()); };
  if (bytes() > characters_) ++rounded_;
  for (int digits = kMostDigits; bytes() > characters_; --digits) {
    end = std::to_chars(text.data(), last, number, std::chars_format::general, digits).ptr;
  }
  out->append(characters_ - bytes(), ' ').append(text.data(), bytes());
}

void CFixedNumbers::Note(std::vector<std::string>* notes) const {
  if (rounded_ == 0) return;
  notes->push_back("Numbers that were rounded to " + std::to_string(characters_) +
                   " characters: " + std::to_string(rounded_) + ".");
}

}  // namespace statrn32
