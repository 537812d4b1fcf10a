#include "engine/run/FileIdentity.h"

#include <filesystem>

#include <sys/stat.h>

FILEIDENTITY IdentityOf(const std::string& name) {
  namespace fs = std::filesystem;
  constexpr int kMostLinks = 40;
  struct stat info {};
  if (stat(name.c_str(), &info) == 0) return {info.st_dev, info.st_ino, {}, true};
  std::error_code error;
  fs::path path = name;
  for (int links = 0; links < kMostLinks && fs::is_symlink(fs::symlink_status(path, error));
       ++links) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  if (stat(folder.c_str(), &info) != 0) return {};
  return {info.st_dev, info.st_ino, path.filename().string(), true};
}
