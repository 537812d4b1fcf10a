#include "statrn32/BesideFile.h"

#include <filesystem>

#include "host/Text.h"

namespace statrn32 {

namespace fs = std::filesystem;

std::string FindInFolderOf(const std::string& file, const std::string& wanted) {
  const fs::path path(file);
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  std::error_code failed;
  if (fs::is_regular_file(folder / wanted, failed)) return (folder / wanted).string();
  for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end;
       entry.increment(failed)) {
    if (EqualIgnoringCase(entry->path().filename().string(), wanted)) return entry->path().string();
  }
  return {};
}

std::string FindBeside(const std::string& file, std::string_view extension) {
  return FindInFolderOf(file, fs::path(file).stem().string() + "." + std::string(extension));
}

}  // namespace statrn32
