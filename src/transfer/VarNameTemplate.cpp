#include "transfer/VarNameTemplate.h"

#include <algorithm>

#include "host/Text.h"

namespace STUtils {

template <typename CharT>
std::basic_string<CharT> basic_var_name_template_t<CharT>::Name(std::size_t position) const {
  constexpr std::int32_t kWidest = 20;  // digits of the largest position
  string number = std::to_string(position + 1);
  const auto width = static_cast<std::size_t>(std::clamp(numberWidth, 0, kWidest));
  if (number.size() < width) number.insert(0, width - number.size(), '0');
  const auto room = static_cast<std::size_t>(std::max(maximumLength, 0));
  const std::size_t besideNumber = room > number.size() ? room - number.size() : 0;
  const string end = CutText(suffix, besideNumber);
  return CutText(prefix, besideNumber - end.size()) + number + end;
}

template class basic_var_name_template_t<char>;

}  // namespace STUtils
