#include "vexutils/TempFile.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <unistd.h>

#include <sys/vfs.h>

namespace {

bool LiesInMemory(const char* folder) {
  constexpr long kTmpfs = 0x01021994;
  constexpr long kRamfs = 0x858458f6;
  struct statfs info {};
  if (statfs(folder, &info) != 0) return false;
  const auto kind = static_cast<long>(info.f_type);
  return kind == kTmpfs || kind == kRamfs;
}

// Empty where the system does not tell.
std::string FolderOf(int file) {
  std::error_code error;
  const auto link = std::filesystem::path("/proc/self/fd") / std::to_string(file);
  return std::filesystem::read_symlink(link, error).parent_path().string();
}

int OpenUnnamedIn(const std::string& folder) {
#ifdef O_TMPFILE
  const int unnamed = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (unnamed >= 0) return unnamed;
#endif
  std::string name = (std::filesystem::path(folder) / "sortXXXXXX").string();
  const int descriptor = mkostemp(name.data(), O_CLOEXEC);
  if (descriptor >= 0) unlink(name.c_str());
  return descriptor;
}

}  // namespace

std::string FolderOfTempFiles() {
  std::error_code error;
  const char* const chosen = std::getenv("TMPDIR");
  if (chosen != nullptr && std::filesystem::is_directory(chosen, error)) return chosen;
  const bool haveVarTmp = std::filesystem::is_directory("/var/tmp", error);
  return haveVarTmp && LiesInMemory("/tmp") ? "/var/tmp" : "/tmp";
}

std::string GetTempName(const char* prefix) {
  constexpr std::string_view kExtension = ".tmp";
  std::string name = (std::filesystem::path(FolderOfTempFiles()) / prefix).string();
  name += "XXXXXX";
  name += kExtension;
  const int descriptor = mkostemps(name.data(), static_cast<int>(kExtension.size()), O_CLOEXEC);
  if (descriptor < 0) return {};
  close(descriptor);
  return name;
}

int OpenUnnamedBeside(int file) {
  const std::string folder = FolderOf(file);
  const int beside = folder.empty() ? -1 : OpenUnnamedIn(folder);
  return beside >= 0 ? beside : OpenUnnamedIn(FolderOfTempFiles());
}

int OpenUnnamedTemporary() {
  return OpenUnnamedIn(FolderOfTempFiles());
}
