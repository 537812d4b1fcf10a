// Files that belong to another file and stand in the same folder.
#pragma once

#include <string>
#include <string_view>

namespace statrn32 {

// The path of the file called `wanted` in the folder of `file`, whatever the case of its letters;
// empty when there is none.
std::string FindInFolderOf(const std::string& file, const std::string& wanted);

// The same for the name of `file` with another extension ("dbt").
std::string FindBeside(const std::string& file, std::string_view extension);

}  // namespace statrn32
