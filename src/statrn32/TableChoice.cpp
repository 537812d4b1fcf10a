#include "statrn32/TableChoice.h"

#include "host/Text.h"

namespace statrn32 {

std::size_t ChooseTable(const std::vector<std::string>& tables, const std::string& wanted) {
  if (wanted.empty()) return 0;
  std::size_t place = 0;
  while (place < tables.size() && !EqualIgnoringCase(tables[place], wanted)) ++place;
  return place;
}

std::string NoteOtherTables(const std::vector<std::string>& tables, std::size_t chosen) {
  std::string others;
  for (std::size_t i = 0; i < tables.size(); ++i) {
    if (i != chosen) others += (others.empty() ? "" : ", ") + tables[i];
  }
  return "Read was \"" + tables[chosen] + "\"; the file also holds " + others + ".";
}

}  // namespace statrn32
