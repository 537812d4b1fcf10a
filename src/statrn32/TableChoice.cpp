#include "statrn32/TableChoice.h"

#include <algorithm>

#include "host/Text.h"

namespace statrn32 {

std::size_t ChooseTable(const std::vector<std::string>& tables, const std::string& wanted) {
  if (wanted.empty()) return 0;
  const auto same = std::find(tables.begin(), tables.end(), wanted);
  const auto found = same != tables.end()
                         ? same
                         : std::find_if(tables.begin(), tables.end(), [&](const std::string& name) {
                             return EqualIgnoringCase(name, wanted);
                           });
  return static_cast<std::size_t>(found - tables.begin());
}

std::string NoteOtherTables(const std::vector<std::string>& tables, std::size_t chosen) {
  std::string others;
  for (std::size_t i = 0; i < tables.size(); ++i) {
    if (i != chosen) others += (others.empty() ? "" : ", ") + tables[i];
  }
  return "Read was \"" + tables[chosen] + "\"; the file also holds " + others + ".";
}

}  // namespace statrn32
