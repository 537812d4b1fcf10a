// Which table is read of a file that holds several.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace statrn32 {

// The place of the table called `wanted`, or so but for the case of its letters; of the first one
// when `wanted` is empty. `tables.size()` when there is none.
std::size_t ChooseTable(const std::vector<std::string>& tables, const std::string& wanted);

// A sentence that names the table that was read and those that were not.
std::string NoteOtherTables(const std::vector<std::string>& tables, std::size_t chosen);

}  // namespace statrn32
