// What a text file that is read and one that is written have in common.
#pragma once

#include <cstdint>

namespace STUtils {

// What stands between two values in a text file of this type; `own` is that of the type whose
// delimiter is asked for.
char TextSeparator(std::int32_t type, char own);

template <typename CharT>
class basic_text_transfer_t {
 public:
  std::int32_t type = 0;  // 1001 to 1005
  CharT delimiter = 0;    // of the type that has none of its own

  CharT Separator() const { return TextSeparator(type, delimiter); }
};

}  // namespace STUtils
