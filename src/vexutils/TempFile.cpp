#include "vexutils/TempFile.h"

#include <cstdlib>
#include <filesystem>
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

}  // namespace

std::string TempFolder() {
  std::error_code error;
  const char* const chosen = std::getenv("TMPDIR");
  if (chosen != nullptr && std::filesystem::is_directory(chosen, error)) return chosen;
  const bool haveVarTmp = std::filesystem::is_directory("/var/tmp", error);
  return haveVarTmp && LiesInMemory("/tmp") ? "/var/tmp" : "/tmp";
}

std::string GetTempName(const char* prefix) {
  constexpr std::string_view kExtension = ".tmp";
  std::string name = (std::filesystem::path(TempFolder()) / prefix).string();
  name += "XXXXXX";
  name += kExtension;
  const int descriptor = mkstemps(name.data(), static_cast<int>(kExtension.size()));
  if (descriptor < 0) return {};
  close(descriptor);
  return name;
}
