// The pattern from which variables without a name get one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace STUtils {

template <typename CharT>
class basic_var_name_template_t {
 public:
  using string = std::basic_string<CharT>;

  string prefix = "VAR";
  string suffix;
  std::int32_t numberWidth = 3;     // the number is filled up with zeros to this many digits
  std::int32_t maximumLength = 16;  // bytes, as a system data file holds them

  // The name of the variable at `position`, counted from 0: VAR001 for the first. A name that is
  // too long loses the last characters of its prefix first, then those of its suffix; the number
  // stays.
  string Name(std::size_t position) const;
};

using var_name_template_t = basic_var_name_template_t<char>;

extern template class basic_var_name_template_t<char>;

}  // namespace STUtils
