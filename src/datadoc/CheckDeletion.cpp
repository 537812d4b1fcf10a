// Variable deletions that a data-screening syntax asks for.
#include <charconv>
#include <string_view>
#include <vector>

#include "datadoc/DataDoc.h"

namespace {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The next word of `rest`, which is shortened by it; empty at the end.
std::string_view NextWord(std::string_view& rest) {
  const std::size_t begin = rest.find_first_not_of(' ');
  if (begin == std::string_view::npos) return rest = {};
  const std::size_t end = rest.find(' ', begin);
  const std::string_view word = rest.substr(begin, end - begin);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end);
  return word;
}

// Flags the variables that one "SD" line names; the first word that is no number ends the line.
void FlagDeletions(std::string_view line, std::vector<bool>& flags) {
  NextWord(line);
  for (std::string_view word = NextWord(line); !word.empty() && IsDigit(word.front());
       word = NextWord(line)) {
    std::size_t number = 0;
    const auto result = std::from_chars(word.data(), word.data() + word.size(), number);
    if (result.ec == std::errc() && number >= 1 && number <= flags.size()) flags[number - 1] = true;
  }
}

}  // namespace

int CDataDoc::CheckDeletion(const CStringList& lines) {
  std::vector<bool> flags(static_cast<std::size_t>(data_.variables), false);
  for (const CString& line : lines) {
    if (line.starts_with("SD")) FlagDeletions(line, flags);
  }
  std::size_t kept = 0;
  for (std::size_t index = 0; index < flags.size(); ++index) {
    if (flags[index]) continue;
    if (kept != index) data_.variable[kept] = data_.variable[index];
    ++kept;
  }
  const auto deleted = static_cast<int>(flags.size() - kept);
  if (deleted > 0) {
    data_.variables -= deleted;
    SizeRecordBuffer();
  }
  return deleted;
}
